// What deflating the parts of a workbook costs and saves: xlsx_levels zlib|tuned|libdeflate LEVEL FILE...
//
// `tuned` is zlib's level 4 with the search that the library uses, LEVEL being the length of the chain.
// Both are given every file whole and keep nothing, so that they can be compared; the library feeds zlib blocks,
// which costs no more.
#include <zlib.h>

#if __has_include(<libdeflate.h>)
#include <libdeflate.h>
#define VOK_BENCH_LIBDEFLATE
#endif

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "report.h"

namespace {

std::uint64_t zlibSize(const std::string& bytes, int level, int chain) {
  z_stream stream{};
  if (deflateInit2(&stream, level, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY) != Z_OK) return 0;
  if (chain > 0) deflateTune(&stream, 8, 16, 64, chain);
  std::vector<char> output(std::size_t{64} * 1024);
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
  stream.avail_in = static_cast<uInt>(bytes.size());
  int answer = Z_OK;
  while (answer == Z_OK) {
    stream.next_out = reinterpret_cast<Bytef*>(output.data());
    stream.avail_out = static_cast<uInt>(output.size());
    answer = deflate(&stream, Z_FINISH);
  }
  const std::uint64_t size = stream.total_out;
  deflateEnd(&stream);
  return size;
}

#ifdef VOK_BENCH_LIBDEFLATE
std::uint64_t libdeflateSize(const std::string& bytes, int level) {
  libdeflate_compressor* const compressor = libdeflate_alloc_compressor(level);
  std::vector<char> output(libdeflate_deflate_compress_bound(compressor, bytes.size()));
  const std::uint64_t size = libdeflate_deflate_compress(compressor, bytes.data(), bytes.size(),
                                                         output.data(), output.size());
  libdeflate_free_compressor(compressor);
  return size;
}
#endif

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) {
    std::fprintf(stderr, "usage: xlsx_levels zlib|tuned|libdeflate LEVEL FILE...\n");
    return 2;
  }
  const std::string_view library = argv[1];
  const int level = std::atoi(argv[2]);
  std::vector<std::string> files;
  for (int i = 3; i < argc; ++i) {
    std::ifstream file(argv[i], std::ios::binary);
    files.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  }
  std::uint64_t written = 0;
  const bench::stopwatch watch;
  for (const std::string& bytes : files) {
#ifdef VOK_BENCH_LIBDEFLATE
    if (library == "libdeflate") {
      written += libdeflateSize(bytes, level);
      continue;
    }
#endif
    if (library == "libdeflate") return 77;  // not installed
    written += library == "tuned" ? zlibSize(bytes, 4, level) : zlibSize(bytes, level, 0);
  }
  bench::report("level", watch.seconds(),
                {
                    {"written", written}
  });
  bench::leave();
}
