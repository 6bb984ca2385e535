// Between the bytes of the system and the Unicode of the screen. Bytes that are valid UTF-8 are that, all
// others are Windows-1252 with its five free codes as they stand, so that every text comes back as it was.
#pragma once

#include <QByteArray>
#include <QString>
#include <string_view>

enum class TextEncoding { utf8, windows1252 };

// UTF-8 for plain ASCII too.
TextEncoding encodingOf(std::string_view bytes);

QString unicodeOf(std::string_view bytes);
QString unicodeOf(std::string_view bytes, TextEncoding encoding); // bytes that are known to be that
// A character that Windows-1252 lacks becomes a question mark.
QByteArray bytesOf(const QString& text, TextEncoding encoding);

// The most bytes, up to the limit, that end between two characters.
std::size_t cutBetweenCharacters(std::string_view bytes, std::size_t limit);

// The text for a menu or button, and for a title: with the marks doubled that Qt would not show there.
QString labelOf(std::string_view bytes);
QString titleOf(std::string_view bytes);
QString hintOf(std::string_view bytes); // for a tooltip of one line
