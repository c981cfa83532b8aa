#pragma once

#include <string_view>

namespace trvtrout::host {

// The sources of the page, put in by the build: page.html with {{names}} where something stands in for them, its style,
// and its scripts one after the other as one.
extern const std::string_view kPageHtml, kPageStyle, kPageScript;

}  // namespace trvtrout::host
