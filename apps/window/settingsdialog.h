/** Lets the user change the settings. */
#ifndef VIDEODOWN_WINDOW_SETTINGSDIALOG_H
#define VIDEODOWN_WINDOW_SETTINGSDIALOG_H

#include "settings.h"

#include <QDialog>

#include <memory>

class SettingsDialog : public QDialog
{
    Q_OBJECT

public:
    /** @param keepsPasswords whether there is a keyring; if not, the dialog says so */
    SettingsDialog(const Settings &settings, bool keepsPasswords, QWidget *parent = nullptr);
    ~SettingsDialog() override;

    /** What the user has chosen; good once the dialog was accepted. */
    Settings settings() const;

private:
    struct Widgets;
    std::unique_ptr<Widgets> m_widgets;
    Settings m_settings;
};

#endif
