// The C interface as a sequence of calls that the input chooses, on a file of the input: each answers as its
// declaration says, whatever was called before.
#include <limits>

#include "fuzz/fuzzing.h"
#include "fuzz/targets.h"
#include "table_rw/capi/vo_table_reader.h"

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
        &host::setOption, &host::reopen, &host::read,   &host::readDemo,   &host::readHeaders,
        &host::setTable,  &host::tables, &host::fields, &host::oneValue,   &host::namedValue,
        &host::row,       &host::errors, &host::read,   &host::setEncoding};
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
    if (column < whole.all.size())
      demand(whole.all[column] == value.all.front(), "a row has another value");
    else
      demand(value.all.front().empty(), "a value behind the end of its row");
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
