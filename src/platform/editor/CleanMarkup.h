#pragma once
// Markup that comes from outside, from the clipboard or a drop, made fit to stand in a page.
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace pw {

/** Takes over what an address of this machine ("file:") or a picture in an address ("data:") leads
 *  to, and answers the reference that then stands for it in the page. None drops the reference. */
struct AddressAdopter {
    std::function<std::optional<std::string>(const std::string& address)> picture;
    std::function<std::optional<std::string>(const std::string& address)> link;
};

/** A part of a page as it goes to the clipboard. It says that it is of this program, which then
 *  takes it back as it is, and what its references are relative to: `base`, an address or "". */
std::string MarkupForClipboard(std::string_view html, std::string_view base);

/** The fragment of a clipboard's markup without scripts, event handlers, addresses that run
 *  scripts, and what belongs in a head. Markup of other programs comes out as plain paragraphs,
 *  headings, lists and tables; see ForeignMarkup. `base` is the address of the page that it is to
 *  stand in. "" when nothing is left. */
std::string CleanMarkup(std::string_view html, const AddressAdopter& adopter = {},
                        std::string_view base = {});

/** True when the markup is one picture and nothing else. */
bool IsLonePicture(std::string_view html);

/** Plain text as markup: blank lines part paragraphs, other line ends are breaks. */
std::string MarkupOfText(std::string_view text);

}  // namespace pw
