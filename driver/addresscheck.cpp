#include "driver/addresscheck.h"

#include "driver/texts.h"

#include "down/cdown.h"
#include "engine/taskengine.h"

#include <QUrl>

#include <algorithm>

namespace {

constexpr qsizetype addressLimit = sizeof(tagTaskInfo::szPageURL) - 1;

bool hasBlankOrControl(const QString &text)
{
    return std::any_of(text.cbegin(), text.cend(), [](QChar character) {
        return character.isSpace() || character.category() == QChar::Other_Control;
    });
}

bool isWebAddress(const QString &address)
{
    const QUrl url(address);
    const bool web =
        url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    return url.isValid() && web && !url.host().isEmpty() && !hasBlankOrControl(address);
}

} // namespace

std::optional<FailureReason> addressProblem(const QString &address)
{
    if (address.isEmpty())
        return FailureReason{Texts::tr("the address is empty"),
                             Texts::tr("Give the address of a video page.")};
    if (address.toLocal8Bit().size() > addressLimit)
        return FailureReason{Texts::tr("the address is longer than %1 bytes").arg(addressLimit),
                             Texts::tr("Give a shorter address of the same page.")};
    if (!isWebAddress(address))
        return FailureReason{
            Texts::tr("not an http or https address"),
            Texts::tr("Give the whole address of a video page, as in https://host/page.")};
    return std::nullopt;
}

std::optional<FailureReason> folderNameProblem(const QString &folder)
{
    const QString probe = CDown::CustomVideoName(folder, QStringLiteral("n"), QString(), false);
    if (!folder.contains(u'\\') && probe == folder + QLatin1String("/n"))
        return std::nullopt;
    return FailureReason{Texts::tr("the folder name \"%1\" has a backslash, or a percent sign "
                                   "before a digit")
                             .arg(folder),
                         Texts::tr("Choose another folder.")};
}
