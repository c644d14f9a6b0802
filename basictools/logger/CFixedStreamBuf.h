// Stream buffer over caller-owned memory that silently drops what does not
// fit, so formatting a log line never allocates and never fails.
#pragma once

#include <algorithm>
#include <cstddef>
#include <streambuf>

class CFixedStreamBuf : public std::streambuf {
public:
    CFixedStreamBuf(char* storage, std::size_t capacity) { setp(storage, storage + capacity); }

    void reset()
    {
        setp(pbase(), epptr());
        mTruncated = false;
    }
    const char* data() const { return pbase(); }
    std::size_t size() const { return static_cast<std::size_t>(pptr() - pbase()); }
    bool truncated() const { return mTruncated; }

protected:
    int_type overflow(int_type c) override
    {
        if (!traits_type::eq_int_type(c, traits_type::eof()))
            mTruncated = true;
        return traits_type::not_eof(c);
    }

    std::streamsize xsputn(const char* s, std::streamsize n) override
    {
        const std::streamsize room = epptr() - pptr();
        const std::streamsize count = std::min(n, room);
        std::copy(s, s + count, pptr());
        pbump(static_cast<int>(count));
        if (count < n)
            mTruncated = true;
        return n;
    }

private:
    bool mTruncated = false;
};
