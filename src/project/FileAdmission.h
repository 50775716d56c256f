#pragma once
// Which files may come into a project. Whoever writes a page can name any file in it, so every road
// by which files come in asks here: pages and folders that are added, opened, dropped or pasted,
// their style sheets, and the scan for what an open page uses.
//
// Admitted is a regular file inside a folder that the user has named, no part of it below that
// folder hidden, or a file that the user chose himself. It is decided on the resolved path, with
// links and ".." followed. What is not admitted stays in the page as it is written.
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "platform/FileSystem.h"

namespace pw {

/** What a page uses a file for. */
enum class FileUse {
    Picture,
    StyleSheet,
    Script,    ///< also archives of applets
    Styled,    ///< by a style sheet: a picture, a font, another style sheet
    Embedded,  ///< shown or played in the page: picture, sound, film
    Linked     ///< only a link leads to it
};

enum class Verdict { Admitted, Missing, Outside, Hidden, NoFile, WrongKind };

/** A file that a page named and that was not taken in. */
struct LeftOutFile {
    std::string page;       ///< path of the page or style sheet that names it
    std::string reference;  ///< as written there
    std::string file;       ///< resolved path
    Verdict why = Verdict::Missing;
    /** The user may be asked for it: it is a file, and neither hidden nor one of the system's. */
    bool mayBeOffered = false;
};
/** "'../a.gif' in 'b.html' was left out: it lies outside of the folder." */
std::string Describe(const LeftOutFile& file);

/** A file that may be taken. */
struct AdmittedFile {
    std::string named;   ///< the path by which it was found, with the name that the user knows
    std::string real;    ///< its resolved path, for FileSystem::CopyResolved and ReadResolved
    std::string suffix;  ///< query and fragment of the reference
};

class FileAdmission {
  public:
    /** Of what lies in a folder. A page that was taken alone brings only what its tags are for: a
     *  picture that is one by its content, a style sheet, a script, a font, sound, film. */
    enum class Taking {
        Everything,  ///< but for what is hidden
        WhatTagsAreFor,
        HiddenToo  ///< of a project's own folder
    };

    explicit FileAdmission(const FileSystem& files);

    /** A folder that the user has named. References from the root ("/a.gif") are looked for in it,
     *  too, never on the disk. */
    void AllowFolder(std::string_view folder, Taking taking);
    /** A file that the user chose in a dialog, dropped, pasted as a file or agreed to. */
    void AllowFile(std::string_view path);
    /** Pictures anywhere on this machine, named by "file:" addresses, but in no hidden place. For
     *  pasted markup. */
    void AllowPicturesByAddress();

    /** `real`, if given, becomes the resolved path of what is there. */
    Verdict Judge(std::string_view path, FileUse use, std::string* real = nullptr) const;
    bool Admits(std::string_view path, FileUse use) const {
        return Judge(path, use) == Verdict::Admitted;
    }
    /** Whether the folder lies in one that the user has named, no part below it hidden. */
    bool AdmitsFolder(std::string_view folder) const;

    /**
     * The first file that a reference means and that is admitted, looked for from each of the
     * folders in turn. One that is there and is not admitted is noted in `leftOut`, for `page`;
     * `why`, if given, becomes the reason.
     */
    std::optional<AdmittedFile> Find(const std::vector<std::string>& folders,
                                     std::string_view value, FileUse use, Verdict* why = nullptr);
    /** Notes that a base address leads to a folder that is not admitted, if it is there. */
    void NoteFolder(std::string_view address, const std::string& folder);
    /** The folders that a reference from the root can mean. */
    std::vector<std::string> Roots(std::string_view folder) const;

    std::string page;  ///< for the notes: the page or style sheet that is being read
    std::vector<LeftOutFile> leftOut;

  private:
    struct NamedFolder {
        std::string path;  ///< resolved
        Taking taking;
    };
    struct Looks;  ///< what has been seen on the disk, shared by copies

    bool IsFor(const std::string& real, FileUse use) const;
    void Note(std::string_view value, const std::string& from, const std::string& real,
              Verdict why);

    const FileSystem* files_;
    std::vector<NamedFolder> folders_;
    std::shared_ptr<std::unordered_set<std::string>> chosen_;  ///< resolved; shared by copies
    bool picturesByAddress_ = false;
    std::shared_ptr<Looks> looks_;
};

/** True for text in which a program on the server replaces something: "<?php … ?>", "{{ x }}". */
bool HoldsServerCode(std::string_view text);
/** True for a value that a program on the server makes something of (code, or
 *  "a.php?id=3"), so that no file beside the page can be meant. */
bool IsMadeByServer(std::string_view value);
/** True for the name of such a program. */
bool IsServerScript(std::string_view path);

}  // namespace pw
