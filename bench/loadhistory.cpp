// Does nothing but have a history in memory: load_history FILE loads it, load_history --time FILE
// says how many seconds that took, and load_history --make TASKS makes the same records without a
// file.
#include "samplehistory.h"

#include <QFile>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string_view>

int main(int argc, char **argv)
{
    CXMLHistory history;
    const std::string_view option = argc == 3 ? argv[1] : "";
    const auto begin = std::chrono::steady_clock::now();
    if (argc == 2 || option == "--time")
        history.LoadFromFile(QFile::decodeName(argv[argc - 1]));
    else if (option == "--make")
        addTasks(history, std::atoi(argv[2]));
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    if (option == "--time")
        std::printf("%.6f\n", taken.count());
    if (history.count() > 0)
        return 0;
    std::fputs("usage: load_history FILE | --time FILE | --make TASKS\n", stderr);
    return 2;
}
