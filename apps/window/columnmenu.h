/** Which columns of the list are shown. */
#ifndef VIDEODOWN_WINDOW_COLUMNMENU_H
#define VIDEODOWN_WINDOW_COLUMNMENU_H

#include <QHeaderView>
#include <QMenu>

/**
 * Shows and hides the columns of a list; also the context menu of the list's header. The first
 * column always stays.
 */
class ColumnMenu : public QMenu
{
    Q_OBJECT

public:
    /** @param header of a view that has its model; outlives the menu */
    explicit ColumnMenu(QHeaderView &header, QWidget *parent = nullptr);

private:
    void readHeader();

    QHeaderView &m_header;
};

#endif
