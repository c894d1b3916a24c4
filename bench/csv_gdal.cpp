// GDAL on the same file: csv_gdal FILE
// Every field of every row is asked for as text, with the driver's default settings; nothing is
// kept.
#include <gdal.h>
#include <ogr_api.h>

#include <cstdint>
#include <cstdio>
#include <cstring>

#include "report.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: csv_gdal FILE\n");
    return 2;
  }
  GDALAllRegister();
  const bench::stopwatch watch;
  const GDALDatasetH source =
      GDALOpenEx(argv[1], GDAL_OF_VECTOR | GDAL_OF_READONLY, nullptr, nullptr, nullptr);
  if (source == nullptr) bench::fail("cannot be opened", argv[1]);
  const OGRLayerH layer = GDALDatasetGetLayer(source, 0);
  const int columns = OGR_FD_GetFieldCount(OGR_L_GetLayerDefn(layer));
  std::uint64_t rows = 0;
  std::uint64_t values = 0;
  std::uint64_t touched = 0;
  while (const OGRFeatureH feature = OGR_L_GetNextFeature(layer)) {
    for (int column = 0; column < columns; ++column, ++values)
      touched += std::strlen(OGR_F_GetFieldAsString(feature, column));
    OGR_F_Destroy(feature);
    ++rows;
  }
  bench::report("gdal", watch.seconds(),
                {
                    {"rows",    rows   },
                    {"values",  values },
                    {"touched", touched}
  });
  GDALClose(source);
  return 0;
}
