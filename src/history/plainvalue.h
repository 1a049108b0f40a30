/** The values of fields in a plain history, from its bytes. Internal to history. */
#ifndef VIDEODOWN_HISTORY_PLAINVALUE_H
#define VIDEODOWN_HISTORY_PLAINVALUE_H

#include <QDateTime>
#include <QString>

#include <optional>
#include <string>
#include <string_view>

namespace plainvalue {

/** The bytes of a field from its start tag to the next one. */
struct Text
{
    const char *begin;
    const char *end;
    bool hasReferences; ///< holds "&amp;" and the like
    bool isAscii;
};

/**
 * The text that begins at `begin`; its end is `limit` when there is no tag before that.
 * @return nothing when it holds what a plain history does not
 */
std::optional<Text> textAt(const char *begin, const char *limit);

/**
 * Sets a field from its plain text, as taskelement's `fromText` does.
 * @param like a value that a text may share its memory with, when it is the same; may be null
 * @param scratch memory that is used again for every text
 * @return false, when only a general parser can tell what the text is
 */
bool read(const Text &text, QString &value, const QString *like, std::string &scratch);
bool read(const Text &text, int &value, const int *like, std::string &scratch);
bool read(const Text &text, qint64 &value, const qint64 *like, std::string &scratch);
bool read(const Text &text, QDateTime &value, const QDateTime *like, std::string &scratch);
bool read(const Text &text, bool &value, const bool *like, std::string &scratch);
bool read(const Text &text, float &value, const float *like, std::string &scratch);

} // namespace plainvalue

#endif
