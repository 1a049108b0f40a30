/** Shows a task's progress as the style's own progress bar. */
#ifndef VIDEODOWN_WINDOW_PROGRESSDELEGATE_H
#define VIDEODOWN_WINDOW_PROGRESSDELEGATE_H

#include <QStyledItemDelegate>

class ProgressDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};

#endif
