#pragma once
// Names of files and folders inside a project file: relative, parts divided by slashes. The same
// rules hold for writing and for reading, so that what was saved can be opened.
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace pw {

/** False for names that are absolute, climb with "..", hold backslashes, drive letters or control
 *  characters, have empty parts, or are longer than disks take. */
bool IsSafeName(std::string_view name);
/** A folder's path may also begin or end with a slash, which joins it to what stands there. */
bool IsSafeFolderName(std::string_view name);
std::string_view WithoutOuterSlashes(std::string_view name);
/** A single part, or nothing. */
bool IsSafeLeaf(std::string_view name);
/** Whether a path, divided by slashes or backslashes, has a part "..". */
bool ClimbsUp(std::string_view path);

/** The stored name of a path below a folder; none when it lies elsewhere. Not yet checked. */
std::optional<std::string> NameBelow(std::string_view folder, std::string_view path);
/** A stored name as a path below the folder. */
std::string PathBelow(std::string_view folder, std::string_view name);

/** Watches that no two files of a project fall together on a disk that ignores case. */
class NameRegister {
  public:
    enum class Verdict { New, Known, Collides };
    /** `Known` for a name entered before, `Collides` when another name stands in its way. */
    Verdict Enter(const std::string& name);
    /** The name that the last colliding one met. */
    const std::string& Other() const { return other_; }

  private:
    std::unordered_map<std::string, std::string> files_;  // folded name to name
    std::unordered_set<std::string> folders_;             // folded
    std::string other_;
};

}  // namespace pw
