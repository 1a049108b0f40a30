#include "site/options.h"

#include "site/faultoption.h"

#include <array>
#include <getopt.h>

namespace {

enum Key {
    Port = 1000,
    Media,
    Lifetime,
    UntilEof,
    List,
    SmallSize,
    Misbehave,
    Tls,
    ProxyUser,
    Help
};

std::uint64_t numberOption(Options &options, const char *name, std::uint64_t most)
{
    const auto number = readNumber(optarg, most);
    if (!number)
        options.error = std::string(name) + ": not a usable number: " + optarg;
    return number.value_or(0);
}

void readMisbehaviourOption(Options &options)
{
    const std::string text = optarg;
    if (const auto fault = readMisbehaviour(text))
        options.misbehaviours.push_back(*fault);
    else
        options.error = "--misbehave: cannot read " + text;
}

void readProxyOption(Options &options)
{
    const std::string text = optarg ? optarg : ":";
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos)
        options.error = "--proxy: not USER:PASSWORD: " + text;
    else
        options.proxyUser = {text.substr(0, colon), text.substr(colon + 1)};
}

void readOption(Options &options, int key)
{
    constexpr std::uint64_t mostBytes = std::uint64_t(1) << 30U;
    constexpr std::uint64_t mostSeconds = 86400;
    switch (key) {
    case Port:
        options.port = static_cast<int>(numberOption(options, "--port", 65535));
        break;
    case Media:
        options.mediaFolder = optarg;
        break;
    case Lifetime:
        options.lifetime = std::chrono::seconds(numberOption(options, "--lifetime", mostSeconds));
        break;
    case UntilEof:
        options.untilEndOfInput = true;
        break;
    case List:
        options.listPages = true;
        break;
    case SmallSize:
        options.smallVideoSize =
            static_cast<std::size_t>(numberOption(options, "--small-size", mostBytes));
        break;
    case Misbehave:
        readMisbehaviourOption(options);
        break;
    case Tls:
        options.certificateFile = optarg;
        break;
    case ProxyUser:
        readProxyOption(options);
        break;
    case Help:
        options.help = true;
        break;
    default:
        options.error = "see --help";
    }
}

} // namespace

Options readOptions(int argc, char **argv)
{
    static const std::array<option, 11> known = {{
        {"port", required_argument, nullptr, Port},
        {"media", required_argument, nullptr, Media},
        {"lifetime", required_argument, nullptr, Lifetime},
        {"until-eof", no_argument, nullptr, UntilEof},
        {"list", no_argument, nullptr, List},
        {"small-size", required_argument, nullptr, SmallSize},
        {"misbehave", required_argument, nullptr, Misbehave},
        {"tls", required_argument, nullptr, Tls},
        {"proxy", optional_argument, nullptr, ProxyUser},
        {"help", no_argument, nullptr, Help},
        {},
    }};
    Options options;
    for (int key = 0; (key = getopt_long(argc, argv, "", known.data(), nullptr)) != -1;)
        readOption(options, key);
    if (optind < argc)
        options.error = std::string("unexpected argument: ") + argv[optind];
    return options;
}

const char *usage()
{
    return "Usage: videosite [OPTION]...\n"
           "Serves a small video site on 127.0.0.1 and prints its base address once it listens.\n"
           "It ends on SIGTERM and SIGINT, and when its lifetime is over.\n"
           "\n"
           "  --port NUMBER       listen on this port (default: any free one)\n"
           "  --media DIR         folder of the clips\n"
           "  --lifetime SECONDS  end after this time at the latest (default 600, at most 86400)\n"
           "  --until-eof         end when standard input is closed\n"
           "  --list              then print the page address of every video, one per line\n"
           "  --small-size BYTES  size of the generated videos small-N (default 4096)\n"
           "  --tls FILE          serve over TLS too, with a certificate made on the spot, which "
           "is\n"
           "                      written to FILE; the address is printed after the first one\n"
           "  --proxy[=USER:PASSWORD]\n"
           "                      offer an HTTP and SOCKS5 proxy through which every host is this\n"
           "                      site; its address is printed after those\n"
           "  --misbehave FAULTS  faults as a comma-separated list, may be given repeatedly; the "
           "first\n"
           "                      list that fits a request is the one it meets:\n"
           "                        prefix=PATH         requests that begin so (default: all)\n"
           "                        first=COUNT         only the first so many of them\n"
           "                        latency=MS          wait before answering\n"
           "                        header-latency=MS   wait before each line of the header\n"
           "                        header-flood=BYTES  further header fields\n"
           "                        rate=BYTES          body bytes per second\n"
           "                        client-rate=BYTES   the same for all that meet it together\n"
           "                        at-once=COUNT       send so many bodies at a time; to others "
           "503,\n"
           "                                            or the status that is given\n"
           "                        cut=BYTES           close after so many body bytes\n"
           "                        stall=BYTES         stand still after so many body bytes\n"
           "                        unannounced         no length; the connection's end is the "
           "end\n"
           "                        length=BYTES        announce this length\n"
           "                        two-lengths         announce two lengths\n"
           "                        endless             chunks without end\n"
           "                        ignore-range        always send everything\n"
           "                        earlier=BYTES       begin a range so much earlier, and say so\n"
           "                        longer=BYTES        end a range so much later, and say so\n"
           "                        shorter=BYTES       end it so much earlier, and say so\n"
           "                        total-more=BYTES    say that there is so much more in all\n"
           "                        ignore-if-range     send ranges of another file as well\n"
           "                        etag=TEXT           another ETag\n"
           "                        status=CODE         answer with this status (200 to 599) and "
           "an\n"
           "                                            HTML page; 200: a page in place of media\n"
           "                        retry-after=TEXT    Retry-After, with a status\n"
           "                        redirect=ADDRESS    answer with status 302\n"
           "                        gzip-bomb=BYTES     answer with so many zeros, packed\n"
           "  --help              print this text\n";
}
