#pragma once
// Find and Replace for the page in front. The dialog lives across its showings, so that a search
// can go on when it is closed.
#include <memory>
#include <string>

#include "editing/frmFindReplace.h"

namespace pw {

struct MainContext;

class PageFinder : private SearchedPage {
  public:
    explicit PageFinder(MainContext& context);
    ~PageFinder() override;
    PageFinder(const PageFinder&) = delete;
    PageFinder& operator=(const PageFinder&) = delete;

    /** `tool` is the number of Find or of Replace. */
    void Open(int tool);
    /** Opens the dialog when nothing was looked for yet. */
    void FindAgain(frmFindReplace::Direction direction);
    void Close();
    /** None before it was opened for the first time. */
    frmFindReplace* Form() { return dialog_.get(); }

  private:
    FindTarget Target() override;
    void ScrollToSelection() override;
    void ShowStatus(const std::string& text) override;
    frmFindReplace& TheDialog();

    MainContext& context_;
    SearchHistory history_;
    std::unique_ptr<frmFindReplace> dialog_;
};

}  // namespace pw
