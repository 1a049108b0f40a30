/** The journal beside a history: what has changed since the history was written. */
#ifndef VIDEODOWN_DRIVER_JOURNAL_H
#define VIDEODOWN_DRIVER_JOURNAL_H

#include "engine/annotatedmutex.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>

/**
 * A file of lines, each a checksum, a blank and a JSON object, that only ever grows at its end:
 * so a change is on disk for the price of one short write. A line that a sudden end of the program
 * tore is recognised by its checksum, one that stands twice by its number; both are passed over.
 *
 * The first line says by their digest which bytes of the history the lines belong to. Before a
 * newer history takes the place of that one, a line gives its digest too. So after a sudden end,
 * what the history has already can be distinguished from what it lacks, and from another history's
 * journal.
 *
 * Threads: every member may be called from any thread, but for `open`, which comes first.
 */
class Journal
{
public:
    /** Identifies the bytes of a history; no protection against whoever wants two to look alike. */
    static QByteArray digestOf(const QByteArray &history);
    /** The same for a file; empty for none. */
    static QByteArray digestOfFile(const QString &historyPath);

    explicit Journal(QString path);
    ~Journal();
    Journal(const Journal &) = delete;
    Journal &operator=(const Journal &) = delete;

    enum class Found {
        Nothing, ///< no file, or one without a single whole line
        Entries, ///< entries for this history; those it has already are left out
        Foreign, ///< lines for another history
    };
    /**
     * Reads the file, if there is one. What is appended later goes behind the last whole line.
     * @param historyPath is read only for a journal that was written before 0.1.0
     * @param digest of the history as it is
     * @param entries gets the entries, oldest first
     */
    Found open(const QString &historyPath, const QByteArray &digest, QList<QJsonObject> &entries);

    /** Whether there is a file with lines. */
    bool exists() const;
    /** Bytes of the file. */
    qint64 size() const;

    /**
     * Adds entries, all of them or none. @param digest of the history; begins a new file with it
     * @return whether they were written; a torn line is taken back
     */
    bool append(const QList<QJsonObject> &entries, const QByteArray &digest);
    /** Returns when all that was appended is on disk. @return whether that is so */
    bool sync();
    /** Announces the history that is about to take the place of the present one. */
    bool announce(const QByteArray &digest);
    /** Ends the file: the history has all of it. */
    void remove();

private:
    bool openFile() VIDEODOWN_REQUIRES(m_mutex);
    bool write(const QByteArray &lines) VIDEODOWN_REQUIRES(m_mutex);
    QByteArray lineOf(QJsonObject entry) VIDEODOWN_REQUIRES(m_mutex);

    const QString m_path;
    mutable AnnotatedMutex m_mutex;
    int m_file VIDEODOWN_GUARDED_BY(m_mutex) = -1;
    qint64 m_size VIDEODOWN_GUARDED_BY(m_mutex) = 0;   // bytes of whole lines
    qint64 m_number VIDEODOWN_GUARDED_BY(m_mutex) = 0; // of the next line
};

#endif
