#include "readers/gzip_pieces.h"

#include <zlib.h>

namespace tidewick {

namespace {

constexpr qsizetype kPieceSize = 256 * 1024;

}  // namespace

struct GunzipPieces::Stream {
    z_stream z{};
    bool open = false;
};

bool isGzip(QByteArrayView bytes) {
    return bytes.size() >= 2 && quint8(bytes[0]) == 0x1f && quint8(bytes[1]) == 0x8b;
}

GunzipPieces::GunzipPieces(QByteArrayView packed)
    : stream_(std::make_unique<Stream>()), piece_(kPieceSize, Qt::Uninitialized) {
    z_stream& z = stream_->z;
    // zlib reads the input in pieces of at most 4 GiB; a larger file is damaged for this reader.
    if (packed.size() > qsizetype(0xFFFFFFFFu)) {
        damaged_ = ended_ = true;
        return;
    }
    z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
    z.avail_in = uInt(packed.size());
    // 16 + MAX_WBITS: a gzip header and trailer, whose check sum and length zlib checks.
    stream_->open = inflateInit2(&z, 16 + MAX_WBITS) == Z_OK;
    if (!stream_->open) {
        damaged_ = ended_ = true;
    }
}

GunzipPieces::~GunzipPieces() {
    if (stream_->open) {
        inflateEnd(&stream_->z);
    }
}

QByteArrayView GunzipPieces::next() {
    z_stream& z = stream_->z;
    // A call may only read a header and give nothing yet: it goes on until it gives bytes.
    while (!ended_) {
        z.next_out = reinterpret_cast<Bytef*>(piece_.data());
        z.avail_out = uInt(piece_.size());
        const int status = inflate(&z, Z_NO_FLUSH);
        const qsizetype produced = piece_.size() - qsizetype(z.avail_out);
        if (status == Z_STREAM_END) {
            ended_ = true;
        } else if (status != Z_OK || (produced == 0 && z.avail_in == 0)) {
            // Z_BUF_ERROR with the input used up: the stream stops before its end.
            ended_ = damaged_ = true;
            return {};
        }
        if (produced > 0) {
            return QByteArrayView(piece_.constData(), produced);
        }
    }
    return {};
}

}  // namespace tidewick
