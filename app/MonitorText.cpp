#include "app/MonitorText.h"

#include <QByteArrayView>

#include <algorithm>

namespace flashwriter {

void MonitorText::reset() {
    m_decoder.resetState();
    m_endsInReturn = false;
}

QString MonitorText::decode(const std::uint8_t* bytes, std::size_t size) {
    const std::uint8_t* end = std::find(bytes, bytes + size, std::uint8_t{0});
    const bool hasNul = end != bytes + size;
    // With the NUL itself, which ends a character that has only begun.
    const QByteArrayView piece(bytes, end + (hasNul ? 1 : 0));
    QString text = m_decoder.decode(piece);
    if (hasNul) {
        text.chop(1);
        m_decoder.resetState();
    }
    return withPlainLineEnds(text);
}

QString MonitorText::withPlainLineEnds(const QString& text) {
    QString plain;
    plain.reserve(text.size());
    for (const QChar character : text) {
        if (character == '\r') {
            plain.append('\n');
        } else if (character != '\n' || !m_endsInReturn) {
            plain.append(character);
        }
        m_endsInReturn = character == '\r';
    }
    return plain;
}

} // namespace flashwriter
