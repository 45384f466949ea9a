// SPDX-License-Identifier: MIT
#include "tools/JpegCheck.h"

#include <csetjmp>
#include <cstdio>
#include <jpeglib.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace
{

constexpr off_t largestFile = 512 << 20; // bytes

/// The library reports an error by a call that must not return.
struct ErrorHandler {
    jpeg_error_mgr manager = {}; // first, because the library passes its address
    std::jmp_buf afterError = {};
};

[[noreturn]] void leave(j_common_ptr decoder)
{
    std::longjmp(reinterpret_cast<ErrorHandler*>(decoder->err)->afterError, 1);
}

void countWarning(j_common_ptr decoder, int level)
{
    if (level < 0)
        ++decoder->err->num_warnings;
}

bool isStill(const jpeg_decompress_struct& decoder)
{
    return (decoder.num_components == 1 || decoder.num_components == 3)
        && static_cast<long long>(decoder.image_width) * decoder.image_height <= mostStillPixels;
}

/// Decodes at an eighth of the size, which reads all of the data but computes few pixels.
bool decode(jpeg_decompress_struct& decoder, std::string_view bytes, std::vector<JSAMPLE>& line)
{
    jpeg_create_decompress(&decoder);
    jpeg_mem_src(&decoder, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
    jpeg_read_header(&decoder, TRUE);
    // A picture in several scans takes memory and time for each of them.
    if (!isStill(decoder) || jpeg_has_multiple_scans(&decoder) != FALSE)
        return false;
    decoder.scale_num = 1;
    decoder.scale_denom = 8;
    jpeg_start_decompress(&decoder);
    line.resize(std::size_t(decoder.output_width) * static_cast<std::size_t>(decoder.output_components));
    while (decoder.output_scanline < decoder.output_height) {
        JSAMPROW row = line.data();
        jpeg_read_scanlines(&decoder, &row, 1);
    }
    jpeg_finish_decompress(&decoder);
    return decoder.err->num_warnings == 0 && decoder.src->bytes_in_buffer == 0;
}

} // namespace

bool isPlainJpeg(std::string_view bytes)
{
    jpeg_decompress_struct decoder = {};
    ErrorHandler handler;
    decoder.err = jpeg_std_error(&handler.manager);
    handler.manager.error_exit = leave;
    handler.manager.emit_message = countWarning;
    std::vector<JSAMPLE> line; // here, because a jump skips destructors
    const bool isDecoded = setjmp(handler.afterError) == 0 && decode(decoder, bytes, line);
    jpeg_destroy_decompress(&decoder);
    return isDecoded;
}

bool isPlainJpeg(int file)
{
    struct stat status = {};
    if (::fstat(file, &status) != 0 || status.st_size > largestFile)
        return false;
    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t count
            = ::pread(file, bytes.data() + done, bytes.size() - done, static_cast<off_t>(done));
        if (count <= 0)
            return false;
        done += static_cast<std::size_t>(count);
    }
    return isPlainJpeg(std::string_view(bytes));
}
