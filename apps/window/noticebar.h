/** A bar above the list, for what the user should know as long as it holds. */
#ifndef VIDEODOWN_WINDOW_NOTICEBAR_H
#define VIDEODOWN_WINDOW_NOTICEBAR_H

#include <QFrame>

class QLabel;
class QPushButton;

/** A text, selectable and wrapped, with a button beside it. Hidden until it has something to say.
 */
class NoticeBar : public QFrame
{
    Q_OBJECT

public:
    explicit NoticeBar(QWidget *parent = nullptr);

    void show(const QString &text, const QString &button);
    QString text() const;

signals:
    void pressed();

private:
    QLabel *m_text;
    QPushButton *m_button;
};

#endif
