#pragma once
// The dialog that names a file for an element.
//   Edits    one value: a file on disk or an address of the web. It offers what the open pages use
//            already, the files of this machine, and what the user finds with the browser.
//   Refuses  a file that does not exist, and a picture that browsers can't show.
//   Writes   nothing: the caller takes the result.
#include <optional>
#include <set>
#include <string>

#include "platform/controls/Dialog.h"
#include "project/ProjectContext.h"

namespace pw {

class OpenPage;

enum class SourceMode { Image = 0, Video = 1, ActiveX = 2, BackgroundImage = 3, Sound = 4 };

class frmSource : public Dialog {
  public:
    /** `pageKey` is the page that the result is for. */
    frmSource(ProjectContext& context, std::string pageKey);
    /** Captions, filter and list of the mode. Once, before it is shown. */
    void SetupDialog(SourceMode mode);
    /** A value as SourceValues.h tells. */
    void SetURL(const std::string& value);

    TextBox txtURL{this, "txtURL"};  ///< its tag holds the whole path
    ControlArray<Button, 2> cmdBrowse{this, "cmdBrowse"};
    Label lblURL{this, "lblURL"};
    ListView lvwURL{this, "lvwURL"};  ///< the tag of a row holds its value
    Button cmdOK{this, "cmdOK"};
    Button cmdCancel{this, "cmdCancel"};

    /** None when it was cancelled. */
    const std::optional<std::string>& Result() const { return result_; }

  private:
    /** Adds what a page uses and is not listed yet. */
    void ListSources(OpenPage& open, std::set<std::string>& listed);
    void lvwURL_ItemClick(int row);
    void cmdBrowse_Click(int index);
    void BrowseFiles();
    void BrowseWeb();
    void cmdOK_Click();

    ProjectContext& context_;
    std::string pageKey_;
    SourceMode mode_ = SourceMode::Image;
    std::optional<std::string> result_;
};

/** Asks; none when it was cancelled. */
std::optional<std::string> AskSource(ProjectContext& context, SourceMode mode,
                                     const std::string& pageKey, const std::string& value);

}  // namespace pw
