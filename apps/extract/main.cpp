// videodown-extract: what yt-dlp knows of a page, as a video-info response.
#include "down/version.h"
#include "extract/commandoptions.h"
#include "extract/extractor.h"
#include "extract/infolines.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QUrl>

#include <cstdio>

namespace {

enum class ExitStatus { Success = 0, Failure = 1, Usage = 2 };

void complain(const QString &text)
{
    QString shown = text;
    for (QChar &c : shown) {
        if (c.category() == QChar::Other_Control)
            c = u'?';
    }
    const QByteArray line = "videodown-extract: " + shown.toUtf8() + '\n';
    std::fwrite(line.constData(), 1, std::size_t(line.size()), stderr);
}

// Buffered output reports an error late, perhaps not before the end.
ExitStatus print(const QByteArray &text)
{
    const bool written = std::fwrite(text.constData(), 1, std::size_t(text.size()), stdout) ==
                             std::size_t(text.size()) &&
                         std::fflush(stdout) == 0;
    return written ? ExitStatus::Success : ExitStatus::Failure;
}

struct CommandLine
{
    QString address;
    bool asList = false;
    extractor::Options options;
};

void describe(QCommandLineParser &parser)
{
    parser.setApplicationDescription(extractoptions::description());
    parser.addPositionalArgument(QStringLiteral("address"),
                                 QStringLiteral("The address of the page, http or https."));
    parser.addOptions(extractoptions::all());
    parser.addHelpOption();
    parser.addVersionOption();
}

// Other schemes are yt-dlp's, and search, or read files of this machine.
bool isPage(const QString &address)
{
    const QUrl url(address);
    return url.isValid() && !url.host().isEmpty() &&
           (url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https"));
}

/** @return what is wrong with the command line; empty when nothing is */
QString read(const QCommandLineParser &parser, CommandLine &line)
{
    if (parser.positionalArguments().size() != 1)
        return QStringLiteral("exactly one address is needed; see --help");
    line.address = parser.positionalArguments().constFirst();
    if (!isPage(line.address))
        return QStringLiteral("\"%1\" is not the address of a page").arg(line.address);
    line.asList = parser.isSet(extractoptions::list);
    line.options.cookieFile = parser.value(extractoptions::cookies);
    if (parser.isSet(extractoptions::program))
        line.options.program = parser.value(extractoptions::program);
    if (parser.isSet(extractoptions::timeLimit)) {
        const int seconds = parser.value(extractoptions::timeLimit).toInt();
        if (seconds < 1 || seconds > 3600)
            return QStringLiteral("--time-limit needs a number of seconds from 1 to 3600");
        line.options.timeLimit = std::chrono::seconds(seconds);
    }
    return {};
}

ExitStatus printList(const QByteArray &json)
{
    const auto pages = pageinfo::readList(json);
    if (!pages || pages->isEmpty()) {
        complain(QStringLiteral("there is no page in what yt-dlp said"));
        return ExitStatus::Failure;
    }
    return print(pages->join(u'\n').toUtf8() + '\n');
}

// A page without a video is an answer too: its reason is for whoever asked for the video.
ExitStatus printLines(const QByteArray &json)
{
    const auto info = pageinfo::read(json);
    if (!info)
        return print(infolines::refusal(QStringLiteral("what yt-dlp said cannot be read")));
    const infolines::Lines lines = infolines::of(*info);
    for (const QString &remark : lines.remarks)
        complain(remark);
    return print(lines.text);
}

ExitStatus run(const CommandLine &line)
{
    const extractor::Answer answer = extractor::ask(line.address, line.asList, line.options);
    if (answer.problem.isEmpty())
        return line.asList ? printList(answer.json) : printLines(answer.json);
    complain(answer.problem);
    return line.asList ? ExitStatus::Failure : print(infolines::refusal(answer.problem));
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("videodown-extract"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VIDEODOWN_VERSION_STRING));
    QCommandLineParser parser;
    describe(parser);
    if (!parser.parse(QCoreApplication::arguments())) {
        complain(parser.errorText());
        return int(ExitStatus::Usage);
    }
    if (parser.isSet(QStringLiteral("help")))
        return int(print(parser.helpText().toUtf8()));
    if (parser.isSet(QStringLiteral("version")))
        return int(print("videodown-extract " VIDEODOWN_VERSION_STRING "\n"));
    CommandLine line;
    const QString wrong = read(parser, line);
    if (!wrong.isEmpty()) {
        complain(wrong);
        return int(ExitStatus::Usage);
    }
    return int(run(line));
}
