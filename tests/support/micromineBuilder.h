// Micromine data files for tests, byte by byte:
//
//     micromineBuilder("WELL C5, DEPTH N8.2, X R8").row("W-1|1.5|2.25").row("W-2||").bytes()
//
// A variable is its name, its letter, its width and, behind a point, its decimals. A value of a binary
// variable is its number; none stands for no value, and `nan`, `inf` for themselves.
#ifndef VOK_TESTS_SUPPORT_MICROMINEBUILDER_H
#define VOK_TESTS_SUPPORT_MICROMINEBUILDER_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace testSupport {

class micromineBuilder {
 public:
  explicit micromineBuilder(std::string_view variables);

  /// Adds a record of values set apart by bars.
  micromineBuilder& row(std::string_view values);
  /// Adds a record of the variables' bytes as they are, padded on the right.
  micromineBuilder& record(std::string_view bytes);
  /// Describes the variable with this number; all lines have descriptions then.
  micromineBuilder& describe(std::size_t number, std::string_view text);
  /// The converter's name in the metadata.
  micromineBuilder& codePage(std::string_view name);
  /// The metadata as a whole; it may take several pages.
  micromineBuilder& metadata(std::string_view xml);
  /// The flavour without magic and metadata.
  micromineBuilder& standard(std::string_view title = "a title");
  /// What ends lines and records; CR LF when not said.
  micromineBuilder& lineEnd(std::string_view bytes);
  /// The line that announces the variables, without its end.
  micromineBuilder& countLine(std::string_view line);

  std::string header() const;
  std::string bytes() const { return header() + records_; }
  std::size_t recordSize() const;

 private:
  struct variable {
    std::string name;
    char type = 'C';
    std::size_t width = 0;
    std::string decimals;
    std::string description;
  };

  std::vector<variable> variables_;
  std::string metadata_;
  std::string title_;
  std::string lineEnd_ = "\r\n";
  std::string countLine_;
  bool standard_ = false;
  bool described_ = false;
  std::string records_;
};

}  // namespace testSupport

#endif
