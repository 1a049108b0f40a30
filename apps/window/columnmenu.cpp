#include "columnmenu.h"

#include <QAbstractItemModel>

ColumnMenu::ColumnMenu(QHeaderView &header, QWidget *parent)
    : QMenu(tr("&Columns"), parent), m_header(header)
{
    for (int column = 1; column < header.count(); ++column) {
        QAction *action = addAction(header.model()->headerData(column, Qt::Horizontal).toString());
        action->setCheckable(true);
        connect(action, &QAction::triggered, this,
                [this, column](bool shown) { m_header.setSectionHidden(column, !shown); });
    }
    connect(this, &QMenu::aboutToShow, this, &ColumnMenu::readHeader);
    header.setContextMenuPolicy(Qt::CustomContextMenu);
    connect(&header, &QWidget::customContextMenuRequested, this,
            [this](QPoint place) { popup(m_header.mapToGlobal(place)); });
}

// A stored look may have changed it.
void ColumnMenu::readHeader()
{
    for (int column = 1; column < m_header.count(); ++column)
        actions().at(column - 1)->setChecked(!m_header.isSectionHidden(column));
}
