#pragma once

#include "foundation/IOQDllString.h"

#include <cstdint>

// Reads one file or address after the other. The caller owns it; one thread at a time but for
// Cancel. Nothing is thrown. Slots: add at the end only.
class IOQReader
{
public:
    virtual ~IOQReader() = default;

    // What the next Open is to know; an empty or null value takes it back. Names are compared
    // without regard to case.
    //   "INFO_HEADERS": lines that a request carries, such as "Accept-Encoding: gzip"
    //   "HTTPREQUEST_TYPE": "HEAD" asks for the headers alone; anything else counts as "GET"
    virtual void SetProperty(const OQChar* name, const OQChar* value) = 0;

    // What the last Open learned. False, and an empty value, for what isn't known.
    //   "Location": where it was found in the end, behind all redirects
    //   "StatusCode", "AllHeaders": of the last answer, the lines as they came
    //   "ContentEncoding": what was done to the bytes, which are given as they came
    //   "Error": in English, why Open or Read failed
    //   any other name, such as "Last-Modified" or "ETag": the answer's header of that name
    // Files have "Location" and "Error" alone.
    virtual bool GetProperty(const OQChar* name, IOQDllString& value) const = 0;

    // Opens a regular file by its path, or an address of http or https. True for any answer of a
    // server: what it says is its "StatusCode". Redirects are followed to such addresses alone,
    // never to a file, from https to https only, and from a public server to public ones only.
    // `openMilliseconds`: until the answer's headers are there, and how far a slow server may lag
    // behind. `idleMilliseconds`: without a byte. What was open is
    // closed.
    virtual bool Open(const OQChar* path, int32_t openMilliseconds, int32_t idleMilliseconds) = 0;

    // Waits for the next bytes, `size` of them at most, and gives their number; 0 at the end, -1 if
    // the rest can't be had: a shorter body than was promised is a failure.
    virtual int64_t Read(void* bytes, int64_t size) = 0;

    // Bytes, as the file or the server tells it; -1 if it isn't known.
    virtual int64_t GetSize() const = 0;

    virtual void Close() = 0;

    // From any thread, while the reader lives: Open and Read, also ones that wait at this moment,
    // fail from now on.
    virtual void Cancel() = 0;
};
