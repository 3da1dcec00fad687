#include "app/MonitorText.h"

#include <QByteArrayView>
#include <QStringDecoder>

#include <algorithm>

namespace flashwriter {

namespace {

// How many bytes a character of UTF-8 has that begins with this one; 1 when none does.
qsizetype sizeOfCharacter(std::uint8_t first) {
    if (first < 0xC2 || first > 0xF4) {
        return 1;
    }
    return first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
}

// How many bytes at the end begin a character that the next piece may complete.
qsizetype sizeOfBegun(QByteArrayView bytes) {
    for (qsizetype size = 1; size <= std::min<qsizetype>(bytes.size(), 3); ++size) {
        const auto byte = static_cast<std::uint8_t>(bytes[bytes.size() - size]);
        if ((byte & 0xC0) != 0x80) {
            return size < sizeOfCharacter(byte) ? size : 0;
        }
    }
    return 0;
}

// The toolkit's decoder could keep what is cut itself, but loses the character behind it when it is
// never completed. A byte order mark is a character like any other here.
QString fromUtf8(QByteArrayView bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless |
                                                     QStringDecoder::Flag::ConvertInitialBom);
    return decoder.decode(bytes);
}

} // namespace

void MonitorText::reset() {
    m_begun.clear();
    m_endsInReturn = false;
}

QString MonitorText::decode(const std::uint8_t* bytes, std::size_t size) {
    const std::uint8_t* end = std::find(bytes, bytes + size, std::uint8_t{0});
    const bool hasNul = end != bytes + size; // which ends a character that has only begun, too
    const QByteArray known = m_begun + QByteArrayView(bytes, end).toByteArray();
    m_begun = known.last(hasNul ? 0 : sizeOfBegun(known));
    return withPlainLineEnds(fromUtf8(QByteArrayView(known).chopped(m_begun.size())));
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
