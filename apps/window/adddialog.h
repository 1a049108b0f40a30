/** Asks for the addresses of video pages, and how their videos are wanted. */
#ifndef VIDEODOWN_WINDOW_ADDDIALOG_H
#define VIDEODOWN_WINDOW_ADDDIALOG_H

#include "settings.h"

#include <QDialog>

#include <memory>

class QTreeWidgetItem;

/**
 * For one address, the user can have the site asked first: the dialog emits `inspectRequested`, and
 * shows what `showInspection` brings. For several, the choice holds for all of them.
 */
class AddDialog : public QDialog
{
    Q_OBJECT

public:
    /** @param settings fill the dialog in */
    explicit AddDialog(const Settings &settings, QWidget *parent = nullptr);
    ~AddDialog() override;

    /** Puts addresses into the field, one per line. */
    void setAddresses(const QStringList &addresses);
    /** The requests that the user wants, one per address. */
    QList<DownloadRequest> requests() const;
    /** Whether videos are to be converted where the site does not offer the wanted format. */
    bool convert() const;

    /** Shows the result of an inspection; ignored unless it is of the address in the field. */
    void showInspection(const DownloadResult &result);

    /** The http and https addresses in a text, in their order, each once. */
    static QStringList addressesIn(const QString &text);

signals:
    void inspectRequested(const QString &address);

private:
    void makeWidgets();
    void check();
    void ask();
    void markChoice();
    void choose(QTreeWidgetItem *item);

    struct Widgets;
    std::unique_ptr<Widgets> m_widgets;
    Settings m_settings;
};

#endif
