// String adapters and string lists of vok_basic.
#include <new>
#include <string>
#include <vector>

#include "platform/codePages.h"
#include "platform/vok_basic.h"

namespace {

std::wstring widened(const char* text) {
  const int length = static_cast<int>(std::char_traits<char>::length(text));
  const int needed = platform::decodeCodePage(platform::systemCodePage, text, length, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(needed), L'\0');
  if (needed > 0)
    platform::decodeCodePage(platform::systemCodePage, text, length, wide.data(), needed);
  return wide;
}

std::string narrowed(const wchar_t* text) {
  const int length = static_cast<int>(std::char_traits<wchar_t>::length(text));
  const int needed = platform::encodeCodePage(platform::systemCodePage, text, length, nullptr, 0);
  std::string narrow(static_cast<std::size_t>(needed), '\0');
  if (needed > 0)
    platform::encodeCodePage(platform::systemCodePage, text, length, narrow.data(), needed);
  return narrow;
}

// The adapter of a caller that has a function and a pointer instead of an object.
class callbackAdapter final : public Tvo_string_adapter_base {
 public:
  callbackAdapter(vo_string_adp_receiver receiver, void* user) : receiver_(receiver), user_(user) {}

  void receive(const wchar_t* text) override { receiver_(user_, text == nullptr ? L"" : text); }

  void receive_narrow(const char* text) override {
    receiver_(user_, text == nullptr ? L"" : widened(text).c_str());
  }

 private:
  vo_string_adp_receiver receiver_;
  void* user_;
};

}  // namespace

struct vo_string_adp {
  explicit vo_string_adp(Tvo_string_adapter_base* receiverObject)
      : callback(nullptr, nullptr), receiver(receiverObject) {}
  vo_string_adp(vo_string_adp_receiver function, void* user)
      : callback(function, user), receiver(&callback) {}
  vo_string_adp(const vo_string_adp&) = delete;
  vo_string_adp& operator=(const vo_string_adp&) = delete;

  callbackAdapter callback;
  Tvo_string_adapter_base* receiver;
};

struct vo_strings {
  std::vector<std::string> texts;
};

Tvo_std_wstring_adapter::Tvo_std_wstring_adapter(std::wstring& target) : target_(&target) {}

void Tvo_std_wstring_adapter::receive(const wchar_t* text) {
  *target_ = text == nullptr ? std::wstring() : std::wstring(text);
}

void Tvo_std_wstring_adapter::receive_narrow(const char* text) {
  *target_ = text == nullptr ? std::wstring() : widened(text);
}

Tvo_std_string_adapter::Tvo_std_string_adapter(std::string& target) : target_(&target) {}

void Tvo_std_string_adapter::receive(const wchar_t* text) {
  *target_ = text == nullptr ? std::string() : narrowed(text);
}

void Tvo_std_string_adapter::receive_narrow(const char* text) {
  *target_ = text == nullptr ? std::string() : std::string(text);
}

vo_string_adp* vo_string_adp_create(Tvo_string_adapter_base* receiver) {
  return receiver == nullptr ? nullptr : new vo_string_adp(receiver);
}

vo_string_adp* vo_string_adp_create_callback(vo_string_adp_receiver receiver, void* user) {
  return receiver == nullptr ? nullptr : new vo_string_adp(receiver, user);
}

void vo_string_adp_feed(vo_string_adp* adapter, const wchar_t* text) {
  if (adapter != nullptr) adapter->receiver->receive(text);
}

void vo_string_adp_feed_narrow(vo_string_adp* adapter, const char* text) {
  if (adapter != nullptr) adapter->receiver->receive_narrow(text);
}

void vo_string_adp_destroy(vo_string_adp* adapter) { delete adapter; }

vo_strings* vo_strings_create(void) { return new vo_strings; }

void vo_strings_add(vo_strings* list, const char* text) {
  if (list != nullptr) list->texts.emplace_back(text == nullptr ? "" : text);
}

size_t vo_strings_get_size(const vo_strings* list) {
  return list == nullptr ? 0 : list->texts.size();
}

const char* vo_strings_get_str(const vo_strings* list, size_t index) {
  return list == nullptr || index >= list->texts.size() ? nullptr : list->texts[index].c_str();
}

void vo_strings_destroy(vo_strings* list) { delete list; }
