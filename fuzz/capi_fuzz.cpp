// The C interface as a sequence of calls that the input chooses, on a file of the input: each answers as its
// declaration says, whatever was called before.
#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

#include "fuzz/fuzzing.h"
#include "fuzz/targets.h"
#include "table_rw/capi/vo_table_reader.h"
#include "table_rw/capi/vo_table_reader_utf.h"
#include "table_rw/capi/vo_table_writer.h"
#include "table_rw/text/utf8.h"

namespace {

using fuzzing::demand;
using fuzzing::inputReader;

// Strings that were fed to an adapter.
class receivedStrings {
 public:
  receivedStrings() : adapter_(vo_string_adp_create_callback(&receive, this)) {}
  receivedStrings(const receivedStrings&) = delete;
  receivedStrings& operator=(const receivedStrings&) = delete;
  ~receivedStrings() { vo_string_adp_destroy(adapter_); }

  operator vo_string_adp*() { return adapter_; }
  std::vector<std::wstring> all;

 private:
  static void receive(void* user, const wchar_t* text) {
    demand(text != nullptr, "a null is fed");
    static_cast<receivedStrings*>(user)->all.emplace_back(text);
  }
  vo_string_adp* adapter_;
};

const wchar_t* const extensions[] = {L"csv",    L"dbf", L"dat", L"tops",
                                     L"sqlite", L"txt", L"",    L"fpt"};

struct listCloser {
  void operator()(vo_text_list* list) const { vo_text_list_close(list); }
};
using ownedList = std::unique_ptr<vo_text_list, listCloser>;

struct writerCloser {
  void operator()(vo_table_writer_options* options) const {
    vo_table_writer_options_close(options);
  }
  void operator()(vo_table_writer* writer) const { vo_table_writer_close(writer); }
};
using ownedWriterOptions = std::unique_ptr<vo_table_writer_options, writerCloser>;
using ownedWriter = std::unique_ptr<vo_table_writer, writerCloser>;

std::vector<const char*> pointersTo(const std::vector<std::string>& texts) {
  std::vector<const char*> pointers;
  for (const std::string& text : texts) pointers.push_back(text.c_str());
  return pointers;
}

// Whether the library can have made this text from itself: it stands for a text that is no UTF-8 otherwise.
bool isExact(const std::string& text) {
  return text.find('\0') == std::string::npos && text.find("\xEF\xBF\xBD") == std::string::npos;
}

// A list in UTF-8 as texts; every text has its NUL behind it.
std::vector<std::string> textsOf(const vo_text_list* list) {
  std::vector<std::string> texts;
  const std::uint64_t* const offsets = vo_text_list_offsets(list);
  const char* const data = vo_text_list_data_u8(list);
  demand(offsets != nullptr && data != nullptr, "a list without offsets or bytes");
  demand(offsets[0] == 0, "a list begins elsewhere");
  for (std::uint64_t i = 0; i < vo_text_list_count(list); ++i) {
    demand(offsets[i] < offsets[i + 1], "a text without its NUL");
    texts.emplace_back(data + offsets[i], data + offsets[i + 1] - 1);
    demand(data[offsets[i + 1] - 1] == '\0', "no NUL behind a text");
    demand(tableRW::isValidUtf8(texts.back()), "a text that is not valid");
  }
  return texts;
}

// One host with its two handles.
class host {
 public:
  host(const std::wstring& path, inputReader& input)
      : input_(&input), options_(vo_table_reader_options_create(path.c_str())) {
    open();
  }
  host(const host&) = delete;
  host& operator=(const host&) = delete;
  ~host() {
    vo_table_reader_close(reader_);
    vo_table_reader_options_close(options_);
  }

  void callNext() {
    static constexpr void (host::*calls[])() = {
        &host::setOption, &host::reopen, &host::read,   &host::readDemo,    &host::readHeaders,
        &host::setTable,  &host::tables, &host::fields, &host::oneValue,    &host::namedValue,
        &host::row,       &host::errors, &host::read,   &host::setEncoding, &host::column,
        &host::rejected,  &host::search, &host::write};
    (this->*input_->oneOf(calls))();
  }

  std::string outcome() {
    return std::to_string(vo_table_reader_field_count(reader_)) + " fields, " +
           std::to_string(vo_table_reader_count(reader_)) + " rows";
  }

 private:
  void open() {
    reader_ = vo_table_reader_open(options_);
    demand(reader_ != nullptr, "open answers null");
    demand(vo_table_reader_count(reader_) == 0, "rows before the first read");
  }
  void reopen() {
    vo_table_reader_close(reader_);
    open();
  }
  // WHY not the types 2 to 4: they start programs and look for drivers.
  void setOption() {
    static constexpr std::int32_t types[] = {0, 1, 5, 0, -1, 100, 1, 5};
    static constexpr wchar_t delimiters[] = {L';', L'\t', L',', L' ', L'\0', L'a'};
    switch (input_->below(5)) {
      case 0:
        return vo_table_reader_options_set_header_position(
            options_, static_cast<std::int32_t>(input_->byte()) - 3);
      case 1:
        return vo_table_reader_options_set_data_position(options_, input_->byte());
      case 2:
        return vo_table_reader_options_set_direction(
            options_, static_cast<std::int32_t>(input_->below(4)) - 1);
      case 3:
        return vo_table_reader_options_set_file_type(options_, input_->oneOf(types));
      default:
        return vo_table_reader_options_set_delimiter(options_, input_->oneOf(delimiters));
    }
  }
  void setEncoding() {
    vo_table_reader_options_set_encoding(options_,
                                         static_cast<std::int32_t>(input_->below(21)) - 1);
  }
  void read() { checkRead(vo_table_reader_read(reader_)); }
  void readDemo() {
    checkRead(vo_table_reader_read_demo(reader_, static_cast<std::int32_t>(input_->byte()) - 1));
  }
  void readHeaders() { checkRead(vo_table_reader_read_only_headers(reader_)); }
  void checkRead(bool isRead) {
    if (isRead) demand(vo_table_reader_is_ok(reader_), "a read that succeeds is not OK");
  }
  void setTable() {
    const std::wstring name = fuzzing::wideText(input_->bytes(input_->below(8)));
    if ((input_->byte() & 1) != 0)
      vo_table_reader_options_set_table(options_, name.c_str());
    else
      vo_table_reader_set_table(reader_, name.c_str());
  }
  void tables() {
    receivedStrings names;
    vo_table_reader_table_list(reader_, names);
    if (!names.all.empty()) vo_table_reader_set_table(reader_, names.all.back().c_str());
  }
  void fields() {
    receivedStrings names;
    vo_table_reader_field_list(reader_, names);
    demand(names.all.size() == vo_table_reader_field_count(reader_), "the number of names");
    for (std::size_t i = 0; i < names.all.size(); ++i) {
      const std::int32_t found = vo_table_reader_field_num(reader_, names.all[i].c_str());
      // A name that holds a NUL is not found by what stands before it.
      demand(found >= -1 && found <= static_cast<std::int32_t>(i), "the place of a name");
      if (found >= 0)
        demand(names.all[static_cast<std::size_t>(found)] == names.all[i], "the first of a name");
    }
  }
  std::uint64_t anyIndex(std::uint64_t count) {
    const unsigned choice = input_->byte();
    if (choice == 0xFF) return std::numeric_limits<std::uint64_t>::max();
    return count == 0 ? choice : (choice * 257U) % (count + 2);
  }
  void oneValue() {
    const std::uint64_t column = anyIndex(vo_table_reader_field_count(reader_));
    const std::uint64_t row = anyIndex(vo_table_reader_count(reader_));
    receivedStrings value;
    vo_table_reader_value_index(reader_, column, row, value);
    demand(value.all.size() == 1, "not one value");
    if (row >= vo_table_reader_count(reader_))
      demand(value.all.front().empty(), "a value of a row that does not exist");
    receivedStrings whole;
    vo_table_reader_row(reader_, row, whole);
    // Rows of Petrel tables may be longer than there are fields, or shorter.
    if (column < whole.all.size() && column < vo_table_reader_field_count(reader_))
      demand(whole.all[column] == value.all.front(), "a row has another value");
    else
      demand(value.all.front().empty(), "a value without a place");
  }
  void namedValue() {
    receivedStrings names;
    vo_table_reader_field_list(reader_, names);
    const std::uint64_t row = anyIndex(vo_table_reader_count(reader_));
    const std::wstring name = names.all.empty() ? L"x" : names.all[input_->below(names.all.size())];
    const std::int32_t column = vo_table_reader_field_num(reader_, name.c_str());
    receivedStrings byName;
    receivedStrings byIndex;
    vo_table_reader_value_name(reader_, name.c_str(), row, byName);
    vo_table_reader_value_index(reader_, static_cast<std::uint64_t>(std::int64_t{column}), row,
                                byIndex);
    demand(byName.all.size() == 1 && byName.all == byIndex.all, "the value by its name");
  }
  void row() {
    const std::uint64_t index = anyIndex(vo_table_reader_count(reader_));
    receivedStrings values;
    vo_table_reader_row(reader_, index, values);
    demand(index < vo_table_reader_count(reader_) || values.all.empty(),
           "a row that does not exist");
  }
  void errors() {
    const std::uint64_t count = vo_table_reader_error_count(reader_);
    demand(
        vo_table_reader_error_string(reader_, count) == std::numeric_limits<std::uint64_t>::max(),
        "an error behind the last");
    for (std::uint64_t i = 1; i < count; ++i)
      demand(
          vo_table_reader_error_string(reader_, i - 1) < vo_table_reader_error_string(reader_, i),
          "errors out of order");
  }

  // A whole column has the values that are asked for one by one, here to their first NUL.
  void column() {
    const std::uint64_t index = anyIndex(vo_table_reader_field_count(reader_));
    const ownedList list(vo_text_list_create());
    demand(vo_table_reader_column_u8(reader_, index, list.get()), "a column is refused");
    const std::vector<std::string> texts = textsOf(list.get());
    const bool isThere = index < vo_table_reader_field_count(reader_);
    demand(texts.size() == (isThere ? vo_table_reader_count(reader_) : 0),
           "the length of a column");
    for (std::size_t row = 0; row < texts.size(); row += 1 + texts.size() / 16) {
      receivedStrings value;
      vo_table_reader_value_index(reader_, index, row, value);
      demand(value.all.front() == fuzzing::wideText(texts[row].c_str()), "a value of a column");
    }
    demand(vo_table_reader_column_u16(reader_, index, list.get()), "a column in UTF-16 is refused");
    demand(vo_text_list_count(list.get()) == texts.size(), "the length of a column in UTF-16");
    demand(vo_text_list_data_u8(list.get()) == nullptr, "UTF-16 as UTF-8");
  }
  void rejected() {
    const unsigned most = input_->byte();
    const ownedList list(vo_text_list_create());
    const bool isRead = vo_table_reader_rejected_u8(reader_, most, list.get());
    const std::vector<std::string> texts = textsOf(list.get());
    demand(texts.size() <= most, "too many rejected lines");
    demand(isRead || texts.empty(), "rejected lines in spite of a failure");
  }

  std::vector<std::string> columnTexts(std::uint64_t index) {
    const ownedList list(vo_text_list_create());
    demand(vo_table_reader_column_u8(reader_, index, list.get()), "a column is refused");
    return textsOf(list.get());
  }
  std::vector<std::string> fieldTexts() {
    const ownedList list(vo_text_list_create());
    demand(vo_table_reader_field_list_u8(reader_, list.get()), "the names are refused");
    return textsOf(list.get());
  }

  // What one condition, or none, finds are the values in the rows that have its value.
  void search() {
    const std::vector<std::string> names = fieldTexts();
    const std::string result = names.empty() ? "x" : names[input_->below(names.size())];
    const std::int32_t resultColumn = vo_table_reader_field_num_u8(reader_, result.c_str());
    const std::uint64_t column = anyIndex(names.size());
    const std::vector<std::string> candidates = columnTexts(column);
    const std::string wanted = candidates.empty() || (input_->byte() & 1) != 0
                                   ? std::string(input_->bytes(input_->below(4)))
                                   : candidates[input_->byte() % candidates.size()];
    const std::uint64_t conditions = input_->below(2);
    const char* const value = wanted.c_str();
    const ownedList list(vo_text_list_create());
    const bool isDone =
        vo_table_reader_search_u8(reader_, result.c_str(), &column, &value, conditions, list.get());
    const std::vector<std::string> found = textsOf(list.get());
    demand(isDone == (conditions == 0 || tableRW::isValidUtf8(value)), "an odd answer of a search");
    if (!isDone || resultColumn < 0 || (conditions > 0 && column >= names.size()))
      return demand(found.empty(), "a search without an aim finds something");
    if (conditions > 0 && !isExact(wanted)) return;
    std::vector<std::string> expected = columnTexts(static_cast<std::uint64_t>(resultColumn));
    if (conditions > 0) {
      std::size_t kept = 0;
      for (std::size_t row = 0; row < expected.size(); ++row)
        if (candidates[row] == wanted) std::swap(expected[kept++], expected[row]);
      expected.resize(kept);
    }
    demand(found == expected, "a search finds something else");
  }

  // The table, or its first rows, is written through the interface, with what the input says of its fields.
  void write() {
    static constexpr const wchar_t* targets[] = {L"written.csv", L"written.dbf", L"written.xlsx"};
    const std::wstring path = fuzzing::inputPath(input_->oneOf(targets));
    const ownedWriterOptions options(
        vo_table_writer_options_create_u8(tableRW::utf8FromWide(path).c_str()));
    demand(options != nullptr, "no options of a writer");
    std::size_t fields = 0;
    for (const std::string& name : fieldTexts()) {
      const auto type = static_cast<std::int32_t>(input_->below(4)) - 1;
      const std::int32_t width = static_cast<std::int32_t>(input_->byte()) * 2 - 2;
      const std::int32_t decimals = static_cast<std::int32_t>(input_->below(20)) - 1;
      const bool isAdded =
          vo_table_writer_options_add_field_u8(options.get(), name.c_str(), type, width, decimals);
      demand(isAdded == ((type == 0 || type == 1) && width >= 0 && decimals >= 0),
             "an odd answer to a field");
      fields += isAdded ? 1 : 0;
    }
    const std::string delimiter(input_->bytes(input_->below(3)));
    demand(vo_table_writer_options_set_delimiter_u8(options.get(), delimiter.c_str()) ==
               tableRW::isValidUtf8(delimiter.c_str()),
           "an odd answer to a delimiter");
    ownedWriter writer(vo_table_writer_open(options.get()));
    demand(writer != nullptr, "no writer");
    const bool isDbf = path.ends_with(L".dbf");
    std::uint64_t written = 0;
    constexpr std::uint64_t mostRows = 40;
    const std::uint64_t rows = std::min(vo_table_reader_count(reader_), mostRows);
    const ownedList list(vo_text_list_create());
    for (std::uint64_t row = 0; row < rows; ++row) {
      demand(vo_table_reader_row_u8(reader_, row, list.get()), "a row is refused");
      const std::vector<std::string> texts = textsOf(list.get());
      const bool isAdded =
          vo_table_writer_add_row_u8(writer.get(), pointersTo(texts).data(), texts.size());
      demand(isDbf || isAdded == !texts.empty(), "an odd answer to a row");
      written += isAdded ? 1 : 0;
    }
    writer.reset();
    if (isDbf && fields > 0) demand(rowsOf(path) == written, "the rows of the written table");
  }
  static std::uint64_t rowsOf(const std::wstring& path) {
    vo_table_reader_options* const options = vo_table_reader_options_create(path.c_str());
    vo_table_reader* const reader = vo_table_reader_open(options);
    vo_table_reader_options_close(options);
    const bool isRead = vo_table_reader_read(reader);
    const std::uint64_t rows = vo_table_reader_count(reader);
    vo_table_reader_close(reader);
    demand(isRead, "a written table cannot be read");
    return rows;
  }

  inputReader* input_;
  vo_table_reader_options* options_;
  vo_table_reader* reader_ = nullptr;
};

}  // namespace

// The first byte is the file's extension, the second the number of bytes that choose the calls; the rest is the file.
std::string fuzzing::capi(std::string_view bytes) {
  inputReader input(bytes);
  const std::wstring name = std::wstring(L"input.") + input.oneOf(extensions);
  inputReader calls(input.bytes(input.byte()));
  const std::wstring path = writeInput(name, input.rest());
  host one(path, calls);
  while (!calls.isAtEnd()) one.callNext();
  return one.outcome();
}
