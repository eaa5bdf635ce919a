/** @file
 * Simple conversions between plain text and HTML, for mail bodies and similar fragments. There is no HTML
 * parser behind them: tags are recognised by their names, attributes are ignored except for the targets of
 * links, and elements may be nested in any way.
 *
 * Conventions:
 *  - Texts may be null, which counts as empty.
 *  - Results are stored as BSTRs, which the caller frees with SysFreeString(). A BSTR that is already in the
 * target is reallocated. If the target is null nothing is done; if memory is exhausted the target keeps its
 * value.
 *  - Conversions take time proportional to the length of the text. The functions may be called from any
 * thread.
 *  - With placeholder tags, "[_[" and "]_]" are written instead of "<" and ">", for channels that would harm
 * angle brackets. In reading, a plain "[" and a plain "]" count as such brackets too.
 *
 * @code
 *     BSTR text = NULL;
 *     UtilConvertHtml2PlainText(L"<p>one &amp; two</p><ul><li>three</ul>", &text, 0);
 *     // "one & two\r- three\r"
 *     SysFreeString(text);
 * @endcode
 */
#ifndef VXUT_UTIL_HTML_H
#define VXUT_UTIL_HTML_H

#include "util/types.h"

#include <wtypes.h>

/** Converts HTML to plain text with CR as the line end. Comments, scripts, styles and other invisible
 * elements are dropped, blanks are collapsed, entities become characters. A link becomes its text followed by
 * its target in brackets, or the target alone if both are the same. The text behind the last link is dropped:
 * callers rely on it.
 *
 *  @param html          the text to convert.
 *  @param target        receives the result; may be null.
 *  @param placeholders  not 0 for placeholder tags.
 */
VXUT_API void UtilConvertHtml2PlainText(const wchar_t* html, BSTR* target, int placeholders);

/** Converts plain text to HTML paragraphs. CR LF and CR end a paragraph, empty paragraphs are left out.
 * Characters are masked as UtilMaskAllHTMLCharacters() does; guillemets are doubled, which
 * UtilConvertHtml2PlainText() undoes.
 *
 *  @param text          the text to convert.
 *  @param target        receives the result; may be null.
 *  @param placeholders  not 0 for placeholder tags.
 */
VXUT_API void UtilConvertText2HTML(const wchar_t* text, BSTR* target, int placeholders);

/** Replaces the characters that HTML treats specially, and those from U+00A0 to U+00FF, by entities. All
 * others from U+0080 are replaced by the text "&#x04x;" except U+0080, which becomes "&euro;"; for each of
 * them the result has one more character of unspecified value at its end.
 *
 *  @param text    the text to convert.
 *  @param target  receives the result; may be null.
 */
VXUT_API void UtilMaskAllHTMLCharacters(const wchar_t* text, BSTR* target);

/** Replaces entities by characters: the named ones of U+00A0 to U+00FF, &amp;amp; &amp;quot; &amp;lt;
 * &amp;gt; and &amp;euro; (which becomes U+0080), and decimal and hexadecimal numbers, of which the lower 16
 * bits count. Unknown names stay; a number that is 0 or not well-formed loses its ampersand.
 *
 *  @param text    the text to convert.
 *  @param target  receives the result; may be null.
 */
VXUT_API void UtilDemaskAllHTMLCharacters(const wchar_t* text, BSTR* target);

#endif
