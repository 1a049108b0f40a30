/** The task list and the XML history file that keeps it between runs. */
#ifndef VIDEODOWN_HISTORY_CXMLHISTORY_H
#define VIDEODOWN_HISTORY_CXMLHISTORY_H

#include "engine/visibility.h"
#include "history/cxmlinfo.h"

#include <QDomElement>
#include <QList>
#include <QString>

class QDomDocument;

/**
 * Task records in the order in which they were added. Keys are not unique by construction: look-ups
 * give the first record in list order whose `MD5Code` equals the key exactly. The cost is linear.
 *
 * Ownership: the list owns its records; `removeAll` and the destructor delete them, each once even
 * where it was added twice. A record that `remove` took out is the caller's.
 *
 * Threads: no lock of its own; a controller's list is protected by the controller lock.
 */
class VIDEODOWN_PUBLIC CXMLHistory
{
public:
    CXMLHistory();
    ~CXMLHistory();
    CXMLHistory(const CXMLHistory &) = delete;
    CXMLHistory &operator=(const CXMLHistory &) = delete;

    /** Number of records. */
    int count() const;
    /** The first record with this key, or null. */
    CXMLInfo *item(const QString &key) const;
    /** The record at `index`; null when that is not in 0 to count()-1. */
    CXMLInfo *item(int index) const;
    /** Position of the first record with this key, or -1. */
    int GetIndex(const QString &key) const;
    /** Appends `info`, or a new record when it is null, and returns it. Takes ownership. */
    CXMLInfo *Add(CXMLInfo *info);
    /** Takes the record at `index` out without deleting it; a wrong index does nothing. */
    void remove(int index);
    /** Deletes every record. */
    void removeAll();

    /**
     * Appends the tasks stored in `path`, in the order of the file. The list is not emptied first,
     * and keys it already has are not looked for. A damaged file costs only the damage: what could
     * be read is added. When no such file exists, an information box says so, if the program can
     * show one (a QApplication, on its thread); the calling thread then waits until it is closed.
     */
    void LoadFromFile(const QString &path);

    /**
     * Writes the whole list to `path`, in place: a program that must not lose its history writes to
     * another name and renames. A file that cannot be opened is left alone; nothing is reported.
     */
    void SaveToFile(const QString &path);

    /** Appends to `parent` the element `tagName` with one attribute, and returns it. */
    QDomElement CreateAttributeNode(QDomDocument &doc, QDomElement parent, const QString &tagName,
                                    const QString &attributeName, const QString &attributeValue);

    QList<CXMLInfo *> m_InfoList; ///< the records, in order of addition
};

#endif
