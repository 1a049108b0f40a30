// Writes what is installed beside the programs: videodown-texts manual PROGRAM, or
// videodown-texts completion bash|zsh|fish
#include "texts/completion.h"
#include "texts/programs.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

QByteArray textFor(const QString &kind, const QString &name)
{
    if (kind == QLatin1String("manual"))
        return programs::manualOf(name);
    if (kind != QLatin1String("completion"))
        return {};
    if (name == QLatin1String("bash"))
        return completion::forBash();
    if (name == QLatin1String("zsh"))
        return completion::forZsh();
    return name == QLatin1String("fish") ? completion::forFish() : QByteArray();
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    const QByteArray text = textFor(words.value(1), words.value(2));
    if (text.isEmpty()) {
        std::fputs("usage: videodown-texts manual PROGRAM | completion bash|zsh|fish\n", stderr);
        return 2;
    }
    const auto size = std::size_t(text.size());
    return std::fwrite(text.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0 ? 0
                                                                                              : 1;
}
