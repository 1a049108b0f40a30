#include "progressdelegate.h"

#include "taskmodel.h"

#include <QApplication>
#include <QStyleOptionProgressBar>

namespace {

constexpr int margin = 4;

} // namespace

void ProgressDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                             const QModelIndex &index) const
{
    QStyleOptionViewItem background(option);
    initStyleOption(&background, index);
    background.text.clear();
    const QWidget *widget = option.widget;
    const QStyle *style = widget != nullptr ? widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &background, painter, widget);

    const int height = option.fontMetrics.height() + margin;
    QStyleOptionProgressBar bar;
    bar.initFrom(widget);
    bar.state = option.state | QStyle::State_Horizontal;
    bar.direction = option.direction;
    bar.palette = option.palette;
    bar.fontMetrics = option.fontMetrics;
    bar.rect = option.rect.adjusted(margin, (option.rect.height() - height) / 2, -margin, 0);
    bar.rect.setHeight(height);
    bar.minimum = 0;
    bar.maximum = 100;
    bar.progress = index.data(TaskModel::PercentRole).toInt();
    bar.text = index.data(Qt::DisplayRole).toString();
    bar.textVisible = true;
    bar.textAlignment = Qt::AlignCenter;
    style->drawControl(QStyle::CE_ProgressBar, &bar, painter, widget);
}

QSize ProgressDelegate::sizeHint(const QStyleOptionViewItem &option,
                                 const QModelIndex & /*index*/) const
{
    return {option.fontMetrics.horizontalAdvance(QStringLiteral("100 %")) * 3,
            option.fontMetrics.height() + 3 * margin};
}
