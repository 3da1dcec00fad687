#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>

namespace flashwriter {

// Makes text of what a board sends, piece by piece. A character of UTF-8 or a line end "\r\n" that
// is cut between two pieces comes out whole.
class MonitorText {
public:
    // Forgets what is left of the piece before: another connection begins.
    void reset();

    // The text of the next piece of size bytes. A NUL ends it: what follows in this piece is lost.
    // Bytes that are not UTF-8 become U+FFFD. A line end "\r\n" becomes "\n" as soon as its "\r" is
    // there; nothing else is changed.
    QString decode(const std::uint8_t* bytes, std::size_t size);

private:
    QString withPlainLineEnds(const QString& text);

    QByteArray m_begun;          // the bytes of a character that is not complete yet
    bool m_endsInReturn = false; // the text so far, whose line end has been given out
};

} // namespace flashwriter
