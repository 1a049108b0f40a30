#include "taskengine/unfinishedfiles.h"

#include <cstdint>
#include <cstdio>
#include <unistd.h>

namespace taskengine {

namespace {

constexpr const char *partSuffix = ".part";
constexpr const char *factsSuffix = ".part-info";

std::string folderOf(const std::string &path)
{
    return path.substr(0, path.rfind('/') + 1);
}

/** Asking the file system takes as long as opening a file, and all take names this long. */
constexpr std::size_t fitsEverywhere = 128;

std::size_t longestName(const std::string &folder)
{
    const long longest = ::pathconf(folder.empty() ? "." : folder.c_str(), _PC_NAME_MAX);
    return longest > 0 ? static_cast<std::size_t>(longest) : 255;
}

/** FNV-1a, 64 bits: keeps apart the names that begin alike. */
std::string nameHash(const std::string &name)
{
    std::uint64_t hash = 14695981039346656037U;
    for (const char character : name)
        hash = (hash ^ static_cast<unsigned char>(character)) * 1099511628211U;
    char text[17] = {};
    std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(hash));
    return text;
}

/** Leaves room for what the names of the part and its facts add to it. */
std::string shortened(const std::string &folder, const std::string &name)
{
    const std::size_t added = 1 + std::char_traits<char>::length(factsSuffix);
    if (name.size() + added <= fitsEverywhere)
        return name;
    const std::size_t longest = longestName(folder);
    if (name.size() + added <= longest)
        return name;
    const std::string hash = nameHash(name);
    const std::size_t taken = added + 1 + hash.size();
    return name.substr(0, longest > taken ? longest - taken : 0) + "~" + hash;
}

} // namespace

UnfinishedFiles unfinishedFiles(const std::string &target)
{
    const std::string folder = folderOf(target);
    const std::string name = shortened(folder, target.substr(folder.size()));
    return {folder + name + partSuffix, folder + "." + name + factsSuffix};
}

} // namespace taskengine
