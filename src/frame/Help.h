#pragma once

namespace pw {

struct FrameContext;

/**
 * Opens the help in the browser: the contents with topic 0, else that topic's page. When the help
 * file is missing it offers the one on the Internet.
 */
void ShowHelp(FrameContext& context, int topic);

}  // namespace pw
