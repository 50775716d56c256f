#pragma once
// The properties of one open page.
//   Edits    its title, file name, description and keywords, whether it is the default page of its
//            folder, its looks and its sound, its meta tags and attachments.
//   Refuses  a file name that no file can have or that another page has (unless it is to be the
//            default page: that other one is then moved aside), and files that do not exist.
//   Writes   on OK what was changed: to the page's record, in one undo step to its document, and by
//            way of the file's new name to all pages with links to it. All or nothing: what can be
//            refused is, before anything is written, and files that were copied or renamed are put
//            back when a later one can not be.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "editing/PageAppearance.h"
#include "editing/PageMetaTags.h"
#include "platform/controls/Dialog.h"
#include "project/ProjectContext.h"

namespace pw {

class OpenPage;
class Page;
class FileChanges;

class frmPage : public Dialog {
  public:
    /** The page of that record, open in normal view. Both must outlive the dialog. */
    frmPage(ProjectContext& context, Page& page, OpenPage& open);

    TabStrip tabPage{this, "tabPage"};
    // General.
    TextBox txtTitle{this, "txtTitle"};
    TextBox txtFileName{this, "txtFileName"};
    TextBox txtDesc{this, "txtDesc"};
    TextBox txtKeywords{this, "txtKeywords"};
    CheckBox chkDefaultPage{this, "chkDefaultPage"};
    Label lblDefault{this, "lblDefault"};  ///< which page is the default page now
    ComboBox cboPageStyle{this, "cboPageStyle"};
    Button cmdSetFrameStyle{this, "cmdSetFrameStyle"};
    // Appearance. Where there are two of a kind, the first is the picture's and the second the
    // sound's.
    ControlArray<CheckBox, 2> chkBackground{this, "chkBackground"};
    ControlArray<TextBox, 2> txtSource{this, "txtSource"};
    ControlArray<Button, 2> cmdBrowse{this, "cmdBrowse"};
    CheckBox chkWatermark{this, "chkWatermark"};
    TextBox txtLoop{this, "txtLoop"};
    CheckBox chkSoundLoop{this, "chkSoundLoop"};
    ControlArray<ColorBox, 5> optColor{this, "optColor"};    ///< by PageColor
    ControlArray<CheckBox, 2> chkMargin{this, "chkMargin"};  ///< by PageMargin
    ControlArray<TextBox, 2> txtMargin{this, "txtMargin"};
    // Meta tags: those of a name, and those that stand for a header of the server's answer.
    TabStrip tabMetaTags{this, "tabMetaTags"};
    ControlArray<ListView, 2> lvwMetaTags{this, "lvwMetaTags"};
    ControlArray<Button, 3> cmdMetaTags{this, "cmdMetaTags"};  ///< add, modify, remove
    // Attachments.
    ListView lvwAttachments{this, "lvwAttachments"};
    ControlArray<Button, 2> cmdAttachments{this, "cmdAttachments"};  ///< add, remove
    /** Size, words, characters, created, created by, modified, modified by. */
    ControlArray<Label, 7> lblSummaryVal{this, "lblSummaryVal"};
    Button cmdOK{this, "cmdOK"};
    Button cmdCancel{this, "cmdCancel"};

  private:
    void ConnectHandlers();
    void ShowGeneral();
    void ShowAppearance();
    void ShowMetaTags();
    void ShowAttachments();
    void ShowSummary();
    void EnableAppearance();
    void EnableListButtons();

    void txtTitle_Change();
    void chkDefaultPage_Click();
    void cmdBrowse_Click(int index);
    void optColor_Click(int index);
    void cmdMetaTags_Click(int index);
    /** -1: a new one. */
    void EditMetaTag(int place);
    void RemoveMetaTag(int place);
    void cmdAttachments_Click(int index);
    void AddAttachment();
    void RemoveAttachment();
    void cmdOK_Click();

    // The steps of OK, in order. One that answers false or none has told why, and the dialog stays.
    // Checks:
    bool SourcesStand();
    bool FileNameStands();
    bool TagsStand();
    // Files, which `changes` puts back unless all goes well:
    std::optional<PageAppearance> WantedAppearance();
    bool TakeAttachments();
    bool TakeFileName(FileChanges& changes);
    // The page:
    void WriteDocument(const PageAppearance& looks);
    void WriteAttachments();
    void WriteRecord();
    void ShowElsewhere();

    void ClearDefaultPage();
    std::string WantedFileName() const;
    std::string WantedTitle() const;
    /** Makes way for the page's new name. */
    bool MoveAside(Page& holder, FileChanges& changes, std::string& problem);
    /** Sets what the page is to write for a source field; false when the file can't be copied. */
    bool TakeWanted(int index, std::string& reference);
    void MarkChanged();
    int SelectedMetaTag() const;  ///< -1: none
    /** Tells and leads to the control of a tab. */
    void Refuse(const std::string& message, int tab, TextBox& control);
    void Refuse(const std::string& message, int tab, Control& control);

    ProjectContext& context_;
    Page& page_;
    OpenPage& open_;
    std::string title_;           ///< as shown at first
    PageAppearance appearance_;   ///< as shown at first
    std::string shownSource_[2];  ///< texts of the source fields as shown at first
    PageMetaTags metaTags_;       ///< as they are to be
    std::string newName_;         ///< of the page's file, "" for the one that it has
    Page* holder_ = nullptr;      ///< has that name and moves aside

    /** A line of the list of attachments. */
    struct ListedFile {
        std::string key;  ///< of the page's own, "" for one that is to be added
        std::string path;
        std::int64_t size = 0;
    };
    std::vector<ListedFile> files_;          ///< as they are to be
    std::vector<std::string> removedFiles_;  ///< keys
};

/** Opens the page of that key if need be, writes what is unsaved to its file, and shows the dialog.
 */
void ShowPageProperties(ProjectContext& context, const std::string& key);

}  // namespace pw
