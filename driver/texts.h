/** Texts for people. */
#ifndef VIDEODOWN_DRIVER_TEXTS_H
#define VIDEODOWN_DRIVER_TEXTS_H

#include <QCoreApplication>

/** `Texts::tr`: English, unless the application has installed a translator. Any thread. */
struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Texts)
};

#endif
