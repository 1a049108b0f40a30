/** Keeps the password of the proxy in the user's keyring. */
#ifndef VIDEODOWN_WINDOW_PASSWORDS_H
#define VIDEODOWN_WINDOW_PASSWORDS_H

#include <QObject>
#include <QString>

/** Threads: belongs to the window's thread; nothing here waits. */
class Passwords : public QObject
{
    Q_OBJECT

public:
    explicit Passwords(QObject *parent = nullptr);

    /** Asks the keyring; `found` comes, with an empty password when there is none. */
    void read(const QString &account);
    /** Writes to the keyring (an empty password: removes); `failed` comes if there is none. */
    void write(const QString &account, const QString &password);
    /** Whether the keyring has answered without an error so far. */
    bool isAvailable() const { return m_available; }

signals:
    void found(const QString &account, const QString &password);
    /** The password is kept for the session only. @param reason the keyring's own words */
    void failed(const QString &reason);

private:
    void refuse(const QString &reason);

    bool m_available = true;
};

#endif
