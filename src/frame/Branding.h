#pragma once
// A distributor's own caption, read from a small file beside the program's data.
//
// The last 4 bytes of the file are a little-endian number: the position, counted from 1, of a block
// of two texts of 128 bytes each, padded with blanks or zero bytes.
#include <string>

#include "platform/FileSystem.h"

namespace pw {

class CBrand {
  public:
    CBrand(FileSystem& files, std::string applicationTitle)
        : files_(files), applicationTitle_(std::move(applicationTitle)) {}

    /** Reads the file at once. A missing or damaged one leaves empty texts; nothing is reported. */
    void SetBrandFile(const std::string& path);
    const std::string& BrandFile() const { return brandFile_; }
    const std::string& CompanyName() const { return companyName_; }
    const std::string& SecondText() const { return secondText_; }
    /** The title of all message boxes and of the main window. */
    std::string FormCaption() const;
    bool IsValid() const { return isValid_; }

  private:
    FileSystem& files_;
    std::string applicationTitle_;
    std::string brandFile_;
    std::string companyName_;
    std::string secondText_;
    bool isValid_ = false;
};

}  // namespace pw
