// Book-title and sentence capitalisation of UTF-8 text, for the names and labels the modeller
// shows (layer names, view titles, annotations). Both return a new string of the same length:
// only the case of letters changes, and every other byte, invalid UTF-8 included, is kept.
//
//     titleCase("the shape of things to come: a nurbs primer")
//         == "The Shape of Things to Come: A Nurbs Primer"
//
// The rules, for both forms:
// - A word is a run of bytes between spaces, tabs or line breaks. Each part of a hyphenated
//   word ("out-of-date") is a word of its own. Punctuation around a word ("(the", "end.",
//   curly quotes) is not part of it.
// - A word that already holds a capital after its first letter (iPhone, NURBS, McLaren, eBay,
//   ÉTÉ) is left exactly as it is.
// - Case is changed for ASCII letters and for the accented Latin letters of U+00C0-U+00FE;
//   other letters (Greek, Cyrillic, ...) are kept as they are.
//
// Book-title case (titleCase):
// - Every line is a title of its own. A title's first and last word is capitalised.
// - A colon, question mark or exclamation mark ends a part of the title: the word before it
//   is a last word and the word after it a first word ("Fonts: A Guide").
// - Small words stay lower case unless first or last: the articles a, an, the; the
//   conjunctions and, but, or, nor, for, so, yet; the short prepositions as, at, by, from, in,
//   into, of, off, on, onto, per, to, upon, via, vs, with. (Up, out and over are left out:
//   they are usually particles in titles, as in "Look It Up".)
// - Every other word gets a capital first letter; the rest of it is kept.
//
// Sentence case (sentenceCase):
// - The first word of the text and every word after a full stop, question mark or
//   exclamation mark (with only closing quotes or brackets between) get a capital first
//   letter; all other words get a lower-case first letter. Abbreviations ("e.g. this") end a
//   sentence too: the rule cannot tell them apart.
// - The pronoun I and its contractions (I'm, I've) keep their capital.
#ifndef OBRIX_TEXT_CAPITALISATION_H
#define OBRIX_TEXT_CAPITALISATION_H

#include <string_view>

#include "Base/qvString/CString.h"
#include "ObrixBase/ObrixExport.h"

namespace qvObrixBase {

/// `text` in book-title case, by the rules above. Never fails; O(n), no allocation besides
/// the result.
OBRIX_API qvString::CString titleCase(std::string_view text);

/// `text` in sentence case, by the rules above. Never fails; O(n).
OBRIX_API qvString::CString sentenceCase(std::string_view text);

} // namespace qvObrixBase

#endif
