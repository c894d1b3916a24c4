// String adapters and string lists: what each kind of adapter does with what it is fed.
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "platform/codePages.h"
#include "platform/vok_basic.h"
#include "tests/support/environmentSetter.h"
#include "tests/support/tableText.h"

namespace {

using testSupport::describe;
using testSupport::printable;
using testSupport::textRow;

static_assert(std::is_abstract_v<Tvo_string_adapter_base>);
static_assert(std::is_base_of_v<Tvo_string_adapter_base, Tvo_std_wstring_adapter>);
static_assert(std::is_base_of_v<Tvo_string_adapter_base, Tvo_std_string_adapter>);

struct adapterDestroyer {
  void operator()(vo_string_adp* adapter) const { vo_string_adp_destroy(adapter); }
};
using ownedAdapter = std::unique_ptr<vo_string_adp, adapterDestroyer>;

// ---- conversions --------------------------------------------------------------------------------

// The same wide text in each page that the system may have here.
struct row {
  const char* name;
  unsigned systemPage;
  std::wstring wide;
  std::string narrow;
  std::wstring wideAgain;  // what the narrow text reads as
  int line = __builtin_LINE();
};

const row rows[] = {
    row{"ASCII in 1251",           1251,  L"A-1 ~",        "A-1 ~",            L"A-1 ~"       },
    row{"Cyrillic in 1251",        1251,  L"\x0416\x044F", "\xC6\xFF",         L"\x0416\x044F"},
    row{"best fit in 1251",        1251,  L"\x00C9",       "E",                L"E"           },
    row{"what 1251 lacks",         1251,  L"\x4E2D",       "?",                L"?"           },
    row{"beyond the BMP in 1251",  1251,  L"\U0001F600",   "??",               L"??"          },
    row{"ASCII in 1252",           1252,  L"A-1 ~",        "A-1 ~",            L"A-1 ~"       },
    row{"Latin in 1252",           1252,  L"\x00C9\x20AC", "\xC9\x80",         L"\x00C9\x20AC"},
    row{"what 1252 lacks",         1252,  L"\x0416",       "?",                L"?"           },
    row{"ASCII in UTF-8",          65001, L"A-1 ~",        "A-1 ~",            L"A-1 ~"       },
    row{"Cyrillic in UTF-8",       65001, L"\x0416",       "\xD0\x96",         L"\x0416"      },
    row{"beyond the BMP in UTF-8", 65001, L"\U0001F600",   "\xF0\x9F\x98\x80", L"\U0001F600"  },
};

void expectConversions(unsigned page) {
  std::size_t met = 0;
  for (const row& r : rows) {
    if (r.systemPage != page) continue;
    const testing::ScopedTrace trace(__FILE__, r.line, r.name);
    ++met;
    std::string narrow = "before";
    Tvo_std_string_adapter(narrow).receive(r.wide.c_str());
    EXPECT_EQ(narrow, r.narrow);
    std::wstring wide = L"before";
    Tvo_std_wstring_adapter(wide).receive_narrow(r.narrow.c_str());
    EXPECT_EQ(printable(wide), printable(r.wideAgain));

    std::wstring received;
    const ownedAdapter callback(vo_string_adp_create_callback(
        [](void* user, const wchar_t* text) { *static_cast<std::wstring*>(user) = text; },
        &received));
    vo_string_adp_feed_narrow(callback.get(), r.narrow.c_str());
    EXPECT_EQ(printable(received), printable(r.wideAgain));
  }
  EXPECT_GT(met, 0u) << "no row for page " << page;
}

TEST(stringAdapters, conversionsUseTheSystemsPage) {
  if (const auto page = testSupport::fixedSystemCodePage()) {
    expectConversions(*page);
    return;
  }
  for (const auto& [locale, page] :
       {std::pair(L"ru_RU.CP1251", 1251u), std::pair(L"en_US.CP1252", 1252u),
        std::pair(L"ru_RU.UTF-8", 65001u), std::pair(L"C", 65001u)}) {
    const testSupport::environmentSetter all(L"LC_ALL", locale);
    SCOPED_TRACE(printable(locale));
    EXPECT_EQ(platform::resolveCodePage(platform::systemCodePage), page);
    expectConversions(page);
  }
}

// ---- the two classes ----------------------------------------------------------------------------

TEST(stringAdapters, aWideTargetTakesWideTextAsItIs) {
  std::wstring target = L"before";
  Tvo_std_wstring_adapter adapter(target);
  adapter.receive(L"first");
  EXPECT_EQ(target, L"first");
  adapter.receive(L"\x0416\U0001F600\xFFFD");
  EXPECT_EQ(target, L"\x0416\U0001F600\xFFFD");
  const wchar_t loneSurrogate[] = {L'x', static_cast<wchar_t>(0xD83D), 0};
  adapter.receive(loneSurrogate);
  EXPECT_EQ(target, loneSurrogate);
  adapter.receive(L"");
  EXPECT_EQ(target, L"");
}

TEST(stringAdapters, aNarrowTargetTakesNarrowTextAsItIs) {
  std::string target = "before";
  Tvo_std_string_adapter adapter(target);
  adapter.receive_narrow("first");
  EXPECT_EQ(target, "first");
  adapter.receive_narrow("\xFF\x80\x98");  // in no page's way
  EXPECT_EQ(target, "\xFF\x80\x98");
  adapter.receive_narrow("");
  EXPECT_EQ(target, "");
}

TEST(stringAdapters, emptyTextOfTheOtherWidth) {
  std::wstring wide = L"before";
  Tvo_std_wstring_adapter(wide).receive_narrow("");
  EXPECT_EQ(wide, L"");
  std::string narrow = "before";
  Tvo_std_string_adapter(narrow).receive(L"");
  EXPECT_EQ(narrow, "");
}

TEST(stringAdapters, nullEmptiesTheTarget) {
  std::wstring wide = L"before";
  Tvo_std_wstring_adapter wideAdapter(wide);
  wideAdapter.receive(nullptr);
  EXPECT_EQ(wide, L"");
  wide = L"before";
  wideAdapter.receive_narrow(nullptr);
  EXPECT_EQ(wide, L"");

  std::string narrow = "before";
  Tvo_std_string_adapter narrowAdapter(narrow);
  narrowAdapter.receive(nullptr);
  EXPECT_EQ(narrow, "");
  narrow = "before";
  narrowAdapter.receive_narrow(nullptr);
  EXPECT_EQ(narrow, "");
}

TEST(stringAdapters, aTargetMayBeFedFromItself) {
  std::wstring wide = L"a well's name that is longer than any string keeps in itself";
  Tvo_std_wstring_adapter(wide).receive(wide.c_str() + 2);
  EXPECT_EQ(wide, L"well's name that is longer than any string keeps in itself");
  std::string narrow = "a well's name that is longer than any string keeps in itself";
  Tvo_std_string_adapter(narrow).receive_narrow(narrow.c_str() + 2);
  EXPECT_EQ(narrow, "well's name that is longer than any string keeps in itself");
}

TEST(stringAdapters, textThatIsLongerThanEverBefore) {
  const std::wstring longText(200000, L'x');
  std::string narrow;
  Tvo_std_string_adapter adapter(narrow);
  adapter.receive(longText.c_str());
  EXPECT_EQ(narrow.size(), longText.size());
  adapter.receive(L"short");
  EXPECT_EQ(narrow, "short");
}

// ---- the virtual table --------------------------------------------------------------------------

class recorder final : public Tvo_string_adapter_base {
 public:
  void receive(const wchar_t* text) override { heard_.push_back(L"wide " + std::wstring(text)); }
  void receive_narrow(const char* text) override {
    heard_.push_back(L"narrow " + testSupport::wide(text));
  }
  const textRow& heard() const { return heard_; }

 private:
  textRow heard_;
};

// A host's compiler calls through the table by position, and so does this test. The object's
// address goes first, as the first argument of a plain function would, on both targets.
template <class Text>
void callEntry(std::size_t position, Tvo_string_adapter_base& object, const Text* text) {
  using entry = void (*)(Tvo_string_adapter_base*, const Text*);
  const char* table = nullptr;
  std::memcpy(&table, static_cast<void*>(&object), sizeof table);
  entry function = nullptr;
  static_assert(sizeof function == sizeof table);
  std::memcpy(&function, table + position * sizeof function, sizeof function);
  function(&object, text);
}

TEST(stringAdapters, theFirstTwoEntriesOfTheVirtualTable) {
  recorder object;
  callEntry(0, object, L"first");
  callEntry(1, object, "second");
  EXPECT_EQ(describe(object.heard()), "wide first|narrow second");

  std::wstring wide;
  Tvo_std_wstring_adapter wideAdapter(wide);
  callEntry(0, wideAdapter, L"first");
  EXPECT_EQ(wide, L"first");
  callEntry(1, wideAdapter, "second");
  EXPECT_EQ(wide, L"second");

  std::string narrow;
  Tvo_std_string_adapter narrowAdapter(narrow);
  callEntry(0, narrowAdapter, L"first");
  EXPECT_EQ(narrow, "first");
  callEntry(1, narrowAdapter, "second");
  EXPECT_EQ(narrow, "second");
}

// ---- handles ------------------------------------------------------------------------------------

TEST(stringAdapters, aHandleFeedsTheObjectBehindIt) {
  recorder object;
  vo_string_adp* adapter = vo_string_adp_create(&object);
  ASSERT_NE(adapter, nullptr);
  vo_string_adp_feed(adapter, L"1");
  vo_string_adp_feed_narrow(adapter, "2");
  vo_string_adp_feed(adapter, L"3");
  vo_string_adp_destroy(adapter);
  EXPECT_EQ(describe(object.heard()), "wide 1|narrow 2|wide 3");
  object.receive(L"still there");
  EXPECT_EQ(object.heard().size(), 4u);
}

TEST(stringAdapters, eachFeedReplacesTheOneBefore) {
  std::wstring target;
  Tvo_std_wstring_adapter object(target);
  const ownedAdapter adapter(vo_string_adp_create(&object));
  vo_string_adp_feed(adapter.get(), L"a long first text");
  vo_string_adp_feed(adapter.get(), L"second");
  EXPECT_EQ(target, L"second");
  vo_string_adp_feed_narrow(adapter.get(), "third");
  EXPECT_EQ(target, L"third");
  vo_string_adp_feed(adapter.get(), nullptr);
  EXPECT_EQ(target, L"");
  vo_string_adp_feed(adapter.get(), L"fourth");
  vo_string_adp_feed_narrow(adapter.get(), nullptr);
  EXPECT_EQ(target, L"");
}

TEST(stringAdapters, twoHandlesOfOneObject) {
  recorder object;
  const ownedAdapter first(vo_string_adp_create(&object));
  {
    const ownedAdapter second(vo_string_adp_create(&object));
    vo_string_adp_feed(second.get(), L"2");
  }
  vo_string_adp_feed(first.get(), L"1");
  EXPECT_EQ(describe(object.heard()), "wide 2|wide 1");
}

void append(void* user, const wchar_t* text) { static_cast<textRow*>(user)->push_back(text); }

TEST(stringAdapters, aCallbackHearsEveryFeedInOrder) {
  textRow heard;
  const ownedAdapter adapter(vo_string_adp_create_callback(append, &heard));
  ASSERT_NE(adapter, nullptr);
  vo_string_adp_feed(adapter.get(), L"one");
  vo_string_adp_feed(adapter.get(), L"");
  vo_string_adp_feed_narrow(adapter.get(), "two");
  vo_string_adp_feed(adapter.get(), L"three");
  EXPECT_EQ(describe(heard), "one||two|three");
}

TEST(stringAdapters, aCallbackHearsNullAsTheEmptyText) {
  textRow heard;
  const ownedAdapter adapter(vo_string_adp_create_callback(append, &heard));
  vo_string_adp_feed(adapter.get(), nullptr);
  vo_string_adp_feed_narrow(adapter.get(), nullptr);
  EXPECT_EQ(heard, (textRow{L"", L""}));
}

TEST(stringAdapters, callbacksKeepTheirUsersApart) {
  textRow first;
  textRow second;
  const ownedAdapter firstAdapter(vo_string_adp_create_callback(append, &first));
  const ownedAdapter secondAdapter(vo_string_adp_create_callback(append, &second));
  vo_string_adp_feed(firstAdapter.get(), L"1");
  vo_string_adp_feed(secondAdapter.get(), L"2");
  EXPECT_EQ(describe(first), "1");
  EXPECT_EQ(describe(second), "2");
}

TEST(stringAdapters, aCallbackMayGoWithoutAUser) {
  static int calls;
  calls = 0;
  const ownedAdapter adapter(vo_string_adp_create_callback(
      [](void* user, const wchar_t*) { calls += user == nullptr ? 1 : 100; }, nullptr));
  vo_string_adp_feed(adapter.get(), L"x");
  EXPECT_EQ(calls, 1);
}

TEST(stringAdapters, nullHandlesAndNullReceivers) {
  EXPECT_EQ(vo_string_adp_create(nullptr), nullptr);
  EXPECT_EQ(vo_string_adp_create_callback(nullptr, nullptr), nullptr);
  textRow heard;
  EXPECT_EQ(vo_string_adp_create_callback(nullptr, &heard), nullptr);
  vo_string_adp_feed(nullptr, L"x");
  vo_string_adp_feed(nullptr, nullptr);
  vo_string_adp_feed_narrow(nullptr, "x");
  vo_string_adp_feed_narrow(nullptr, nullptr);
  vo_string_adp_destroy(nullptr);
}

TEST(stringAdapters, threadsDoNotMeet) {
  std::atomic<int> wrong = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&wrong, text = std::to_wstring(i)] {
      std::string target;
      Tvo_std_string_adapter object(target);
      const ownedAdapter adapter(vo_string_adp_create(&object));
      for (int n = 0; n < 500; ++n) {
        vo_string_adp_feed(adapter.get(), text.c_str());
        if (testSupport::wide(target) != text) ++wrong;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

// ---- lists --------------------------------------------------------------------------------------

struct listDestroyer {
  void operator()(vo_strings* list) const { vo_strings_destroy(list); }
};
using ownedList = std::unique_ptr<vo_strings, listDestroyer>;

TEST(stringLists, anEmptyList) {
  const ownedList list(vo_strings_create());
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(vo_strings_get_size(list.get()), 0u);
  EXPECT_EQ(vo_strings_get_str(list.get(), 0), nullptr);
}

TEST(stringLists, stringsKeepTheirOrder) {
  const ownedList list(vo_strings_create());
  vo_strings_add(list.get(), "b");
  vo_strings_add(list.get(), "");
  vo_strings_add(list.get(), "a");
  vo_strings_add(list.get(), "b");
  ASSERT_EQ(vo_strings_get_size(list.get()), 4u);
  EXPECT_STREQ(vo_strings_get_str(list.get(), 0), "b");
  EXPECT_STREQ(vo_strings_get_str(list.get(), 1), "");
  EXPECT_STREQ(vo_strings_get_str(list.get(), 2), "a");
  EXPECT_STREQ(vo_strings_get_str(list.get(), 3), "b");
  EXPECT_EQ(vo_strings_get_str(list.get(), 4), nullptr);
  EXPECT_EQ(vo_strings_get_str(list.get(), static_cast<std::size_t>(-1)), nullptr);
}

TEST(stringLists, aStringIsCopied) {
  const ownedList list(vo_strings_create());
  char text[] = "\xD1\xEA\xE2 \x80\xFF";
  vo_strings_add(list.get(), text);
  text[0] = 'x';
  EXPECT_STREQ(vo_strings_get_str(list.get(), 0), "\xD1\xEA\xE2 \x80\xFF");
}

TEST(stringLists, nullIsAppendedAsTheEmptyString) {
  const ownedList list(vo_strings_create());
  vo_strings_add(list.get(), nullptr);
  ASSERT_EQ(vo_strings_get_size(list.get()), 1u);
  EXPECT_STREQ(vo_strings_get_str(list.get(), 0), "");
}

TEST(stringLists, manyStrings) {
  const ownedList list(vo_strings_create());
  for (int i = 0; i < 10000; ++i) vo_strings_add(list.get(), std::to_string(i).c_str());
  ASSERT_EQ(vo_strings_get_size(list.get()), 10000u);
  EXPECT_STREQ(vo_strings_get_str(list.get(), 0), "0");
  EXPECT_STREQ(vo_strings_get_str(list.get(), 9999), "9999");
}

TEST(stringLists, listsAreIndependent) {
  const ownedList first(vo_strings_create());
  const ownedList second(vo_strings_create());
  vo_strings_add(first.get(), "1");
  EXPECT_EQ(vo_strings_get_size(second.get()), 0u);
}

TEST(stringLists, nullHandles) {
  vo_strings_add(nullptr, "x");
  vo_strings_add(nullptr, nullptr);
  EXPECT_EQ(vo_strings_get_size(nullptr), 0u);
  EXPECT_EQ(vo_strings_get_str(nullptr, 0), nullptr);
  vo_strings_destroy(nullptr);
}

}  // namespace
