/** Lets the user choose how videos are wanted: folder, container, picture size, conversion. */
#ifndef VIDEODOWN_WINDOW_WISHWIDGET_H
#define VIDEODOWN_WINDOW_WISHWIDGET_H

#include "settings.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLineEdit;

/** The fields that the dialogs for settings and for new downloads have in common. */
class WishWidget : public QWidget
{
    Q_OBJECT

public:
    explicit WishWidget(const Settings &settings, QWidget *parent = nullptr);

    /** Writes the user's choice into `settings`. */
    void apply(Settings &settings) const;
    void setFormat(const QString &extension, int width, int height);
    /** Why the choice cannot be used; empty when it can. */
    QString problem() const;

    /** A line with a folder and a button to choose it, as a row of a form. */
    static QLineEdit *addFolder(QFormLayout *form, const QString &label, const QString &path);

signals:
    void changed();

private:
    QLineEdit *m_folder;
    QComboBox *m_container;
    QComboBox *m_size;
    QCheckBox *m_keep;
    QCheckBox *m_convert;
};

#endif
