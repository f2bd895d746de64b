// SPDX-License-Identifier: MIT
// RFC 1321, "The MD5 Message-Digest Algorithm", R. Rivest, April 1992.
#include "business/MD5.h"

#include "platform/core/Cp936.h"

#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <bit>
#include <utility>

namespace Korvane {

namespace {

constexpr unsigned BlockSize = 64;

/// The last 56 bytes of a block before the length.
constexpr unsigned LengthPlace = BlockSize - 8;

/// A file is mapped in pieces of this size, a multiple of any page's.
constexpr qint64 MappedSize = qint64(1) << 28;

/// The integer parts of 4294967296 times abs(sin(i)).
constexpr quint32 Sines[64] = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391};

constexpr int Shifts[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

/// Which word of the block a step takes.
constexpr size_t WordOf(size_t step)
{
    constexpr size_t factors[] = {1, 5, 3, 7};
    constexpr size_t offsets[] = {0, 1, 5, 0};
    return (step * factors[step / 16] + offsets[step / 16]) % 16;
}

/// One of the 64 operations: a = b + ((a + f(b, c, d) + x[k] + t) <<< s).
template <size_t step>
Q_ALWAYS_INLINE void Step(quint32 &a, quint32 b, quint32 c, quint32 d, const quint8 *block)
{
    constexpr size_t round = step / 16;
    a += qFromLittleEndian<quint32>(block + WordOf(step) * sizeof(quint32)) + Sines[step];
    if constexpr (round == 0) {
        a += d ^ (b & (c ^ d));
    } else if constexpr (round == 1) {
        // NOTE: the halves have no bit in common, so that two sums do for "or"; the first need not
        // wait for b, the latest of the words.
        a += c & ~d;
        a += b & d;
    } else if constexpr (round == 2) {
        a += b ^ (c ^ d);
    } else {
        a += c ^ (b | ~d);
    }
    a = std::rotl(a, Shifts[round][step % 4]) + b;
}

/// The roles of the four words go round.
template <size_t... steps>
Q_ALWAYS_INLINE void AllSteps(quint32 (&words)[4], const quint8 *block, std::index_sequence<steps...>)
{
    (Step<steps>(words[(64 - steps) % 4], words[(65 - steps) % 4], words[(66 - steps) % 4],
                 words[(67 - steps) % 4], block),
     ...);
}

void Transform(quint32 (&state)[4], const quint8 *input, size_t blocks)
{
    quint32 words[4] = {state[0], state[1], state[2], state[3]};
    for (; blocks > 0; --blocks, input += BlockSize) {
        const quint32 before[4] = {words[0], words[1], words[2], words[3]};
        AllSteps(words, input, std::make_index_sequence<64>());
        for (size_t i = 0; i < 4; ++i)
            words[i] += before[i];
    }
    std::copy(std::begin(words), std::end(words), state);
}

unsigned BufferedOf(const MD5Context &context) { return (context.Count[0] >> 3) % BlockSize; }

} // namespace

void MD5Init(MD5Context &context) { context = {{0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476}, {}, {}}; }

void MD5Update(MD5Context &context, const quint8 *input, unsigned length)
{
    const unsigned buffered = BufferedOf(context);
    const quint32 bits = length << 3;
    context.Count[0] += bits;
    context.Count[1] += (context.Count[0] < bits ? 1 : 0) + (length >> 29);
    if (buffered > 0) {
        const unsigned taken = std::min(BlockSize - buffered, length);
        std::copy_n(input, taken, context.Buffer + buffered);
        if (buffered + taken < BlockSize)
            return;
        Transform(context.State, context.Buffer, 1);
        input += taken;
        length -= taken;
    }
    Transform(context.State, input, length / BlockSize);
    std::copy_n(input + (length - length % BlockSize), length % BlockSize, context.Buffer);
}

void MD5Final(MD5Context &context, MD5Digest &digest)
{
    quint8 bits[8];
    qToLittleEndian<quint32>(context.Count, std::size(context.Count), bits);
    const unsigned buffered = BufferedOf(context);
    const unsigned end = buffered < LengthPlace ? LengthPlace : LengthPlace + BlockSize;
    MD5Update(context, PADDING.data(), end - buffered);
    MD5Update(context, bits, sizeof bits);
    qToLittleEndian<quint32>(context.State, std::size(context.State), digest.data());
    context = {};
}

MD5Digest MD5String(const QString &text)
{
    const QByteArray bytes = Cp936::Encode(text);
    MD5Context context;
    MD5Init(context);
    MD5Update(context, reinterpret_cast<const quint8 *>(bytes.constData()), unsigned(bytes.size()));
    MD5Digest digest;
    MD5Final(context, digest);
    return digest;
}

MD5Digest MD5File(const QString &fileName)
{
    MD5Context context;
    MD5Init(context);
    QFile file(fileName);
    const qint64 size = file.open(QIODevice::ReadOnly) ? file.size() : 0;
    for (qint64 place = 0; place < size; place += MappedSize) {
        const qint64 length = std::min(MappedSize, size - place);
        uchar *const bytes = file.map(place, length);
        if (!bytes) {
            MD5Init(context); // as if there was nothing
            break;
        }
        MD5Update(context, bytes, unsigned(length));
        file.unmap(bytes);
    }
    MD5Digest digest;
    MD5Final(context, digest);
    return digest;
}

QString MD5Print(const MD5Digest &digest)
{
    return QString::fromLatin1(QByteArrayView(digest).toByteArray().toHex());
}

bool MD5Match(const MD5Digest &left, const MD5Digest &right) { return left == right; }

QString RivestStr(const QString &text) { return MD5Print(MD5String(text)); }

QString RivestFile(const QString &fileName) { return MD5Print(MD5File(fileName)); }

} // namespace Korvane
