/** Everything about the selected task. */
#ifndef VIDEODOWN_WINDOW_DETAILSPANE_H
#define VIDEODOWN_WINDOW_DETAILSPANE_H

#include "taskrow.h"

#include <QTextBrowser>

/** Read only; its text can be selected and copied with mouse and keyboard. */
class DetailsPane : public QTextBrowser
{
    Q_OBJECT

public:
    explicit DetailsPane(QWidget *parent = nullptr);

    void show(const TaskDetails &details);
    void showNothing(int selected);
};

#endif
