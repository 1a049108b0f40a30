// Does nothing but have a history in memory: load_history FILE loads it, load_history --make TASKS
// makes the same records without a file.
#include "samplehistory.h"

#include <QFile>

#include <cstdio>
#include <cstdlib>
#include <string_view>

int main(int argc, char **argv)
{
    CXMLHistory history;
    if (argc == 2)
        history.LoadFromFile(QFile::decodeName(argv[1]));
    else if (argc == 3 && argv[1] == std::string_view("--make"))
        addTasks(history, std::atoi(argv[2]));
    if (history.count() > 0)
        return 0;
    std::fputs("usage: load_history FILE | --make TASKS\n", stderr);
    return 2;
}
