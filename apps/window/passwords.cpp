#include "passwords.h"

#include <qt6keychain/keychain.h>

namespace {

const QString service = QStringLiteral("videodown");

} // namespace

Passwords::Passwords(QObject *parent) : QObject(parent) {}

// Jobs delete themselves when they are done.
void Passwords::read(const QString &account)
{
    auto *job = new QKeychain::ReadPasswordJob(service, this);
    job->setKey(account);
    connect(job, &QKeychain::Job::finished, this, [this, job, account] {
        if (job->error() == QKeychain::NoError || job->error() == QKeychain::EntryNotFound)
            emit found(account, job->textData());
        else
            refuse(job->errorString());
    });
    job->start();
}

void Passwords::write(const QString &account, const QString &password)
{
    QKeychain::Job *job = nullptr;
    if (password.isEmpty()) {
        job = new QKeychain::DeletePasswordJob(service, this);
    } else {
        auto *writing = new QKeychain::WritePasswordJob(service, this);
        writing->setTextData(password);
        job = writing;
    }
    job->setKey(account);
    connect(job, &QKeychain::Job::finished, this, [this, job] {
        if (job->error() != QKeychain::NoError && job->error() != QKeychain::EntryNotFound)
            refuse(job->errorString());
    });
    job->start();
}

void Passwords::refuse(const QString &reason)
{
    m_available = false;
    emit failed(reason);
}
