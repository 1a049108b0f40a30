// Writes a history file of as many tasks as asked for: make_history TASKS FILE
#include "samplehistory.h"

#include <QFile>

#include <cstdio>
#include <cstdlib>

int main(int argc, char **argv)
{
    if (argc != 3) {
        std::fputs("usage: make_history TASKS FILE\n", stderr);
        return 2;
    }
    CXMLHistory history;
    addTasks(history, std::atoi(argv[1]));
    history.SaveToFile(QFile::decodeName(argv[2]));
    return 0;
}
