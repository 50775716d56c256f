#pragma once
// The question after pages were taken in: whether the files that they name and that were left out
// are to come along after all.
#include <functional>
#include <string>
#include <vector>

#include "project/FileAdmission.h"

namespace pw {

struct FrameContext;

/** Tells what was left out and calls `take` once with the files that the user agreed to, if any. */
void OfferLeftOut(FrameContext& frame, const std::vector<LeftOutFile>& leftOut,
                  const std::function<void(const std::vector<std::string>& files)>& take);

}  // namespace pw
