#include "sysutility/sysutility.h"

#include "strutil/strutil.h"

#include <algorithm>

#include <unistd.h>

namespace sysutility {

int GetCurrentPid()
{
    return int(getpid());
}

std::string GetCurrentPath(bool /*flag*/)
{
    return {};
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): taken by value by convention
std::string MakeFileName(std::string szFileName)
{
    static const std::string Invalidchar = "\\/:*?\"<>|";

    std::string name = strutil::trim(szFileName);
    const auto forbidden = [](char character) {
        return Invalidchar.find(character) != std::string::npos;
    };
    name.erase(std::remove_if(name.begin(), name.end(), forbidden), name.end());
    return name;
}

} // namespace sysutility
