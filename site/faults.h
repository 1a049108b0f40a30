#ifndef VIDEODOWN_SITE_FAULTS_H
#define VIDEODOWN_SITE_FAULTS_H

#include "site/videosite.h"

#include <mutex>
#include <string>
#include <vector>

/** The faults that the site was given. All members may be called on any thread. */
class Faults
{
public:
    void add(const Misbehaviour &fault);
    void clear();
    /** The fault that a request with this path and query meets; a faultless one when there is none.
     */
    Misbehaviour take(const std::string &target);

private:
    struct Entry
    {
        Misbehaviour fault;
        unsigned met = 0;
    };

    std::mutex m_mutex;
    // Protected by m_mutex:
    std::vector<Entry> m_entries;
};

#endif
