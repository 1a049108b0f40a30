/** Reading the values of options. Each gives the value, or says what is wrong with the text. */
#ifndef VIDEODOWN_CLI_ARGUMENTS_H
#define VIDEODOWN_CLI_ARGUMENTS_H

#include "engine/taskengine.h"
#include "history/cxmlprofile.h"

#include <QString>
#include <QStringList>

#include <variant>

namespace arguments {

/** What is wrong, to stand behind a colon. */
struct Wrong
{
    QString why;
};

template <typename Value>
using Read = std::variant<Value, Wrong>;

/** "EXT" or "EXT:WIDTHxHEIGHT" */
Read<Profile_Desc> profile(const QString &text);

/** A whole number from `least` to `most`. */
Read<int> count(const QString &text, int most, int least = 1);

/** Bytes per second: "500K", "1.5M"; K, M and G are powers of 1024. */
Read<qint64> rate(const QString &text);

/** A text that a header field can carry. */
Read<QString> fieldValue(const QString &text);

/** The first line of a file, without its end. */
Read<QString> firstLine(const QString &name);

/** The proxy with this password for its user, unless it has one of its own. */
Read<tagProxyParam> withPassword(tagProxyParam proxy, const QString &password);

/** "[http|socks5|socks5h://][user:password@]host:port" */
Read<tagProxyParam> proxy(const QString &text);

/** The addresses in a file, or in standard input for "-": one a line, "#" begins a comment. */
Read<QStringList> listFile(const QString &name);

/** A command line, split at spaces into program and arguments; double quotes hold words together.
 */
Read<QStringList> command(const QString &text);

} // namespace arguments

#endif
