// A short tour of zt: classes that declare themselves once and are created by
// name, reference counting, exceptions, and the typed, null-aware values with
// their text forms, change tracking and parameter bags.
#include <cstdio>

#include "zt.h"

// An application class: two lines make it creatable by name.
class Customer : public ZTObject {
  ZT_DECLARE_CLASS(Customer, ZTObjectCreator)
 public:
  ~Customer() override { std::printf("  (a Customer is destroyed)\n"); }
};
ZT_IMPLEMENT_CLASS(Customer, ZTObject, ZTObjectCreator, "customer")

static void Section(const char* _Title) { std::printf("\n== %s\n", _Title); }

static void Objects() {
  Section("Objects: creation by name and reference counting");
  ZTObject* obj = ZTObjectCreator::CreateObject("customer");
  std::printf("  created a %s by its type name\n", obj->GetClassName());
  const int first = obj->Attach();
  const int second = obj->Attach();
  std::printf("  Attach -> %d, Attach -> %d, Detach -> %d\n", first, second, obj->Detach());
  std::printf("  the last Detach frees it:\n");
  obj->Detach();

  try {
    ZTClassFactory::CreateObject("Supplier", nullptr);
  } catch (const ZTExcept& ex) {
    char line[256];
    ex.GetErrorMessage(line, sizeof line, 0, false);
    std::printf("  failures are exceptions: %s\n", line);
  }
}

static void Strings() {
  Section("Strings: null versus empty, shared until changed");
  ZTString null, empty("");
  std::printf("  null.IsNull()=%d  empty.IsNull()=%d  both IsEmpty: %d\n", null.IsNull(),
              empty.IsNull(), null.IsEmpty() && empty.IsEmpty());
  ZTString name("  Miller & Sons  ");
  name.Trim();
  ZTString copy(name);  // shares the text
  copy.MakeUpper(-1);   // ...until one of them changes it
  std::printf("  '%s' and its changed copy '%s'\n", static_cast<const char*>(name),
              static_cast<const char*>(copy));
  ZTTPArray<ZTString> parts;
  ZTString("red,green,,blue").Split(',', parts);
  std::printf("  split into %d parts, the third one empty: '%s'\n", parts.GetCount(),
              static_cast<const char*>(*parts.Get(2)));
}

static void Numbers() {
  Section("Numbers, dates and money under the user's settings");
  ZTReal real(1234567.891);
  std::printf("  real %s, grouped %s\n", static_cast<const char*>(real.GetString(nullptr)),
              static_cast<const char*>(real.GetString("#.##0,00")));
  ZTInteger answer;
  answer.SetString("0042", -1, nullptr);
  std::printf("  \"0042\" reads as the integer %d\n", answer.GetInt());
  try {
    answer.SetString("forty-two", -1, nullptr);
  } catch (const ZTExcept& ex) {
    std::printf("  bad input is refused: %s\n", ex.GetMsg(0));
  }

  ZTDate due(2024, 2, 28);
  due.AddDays(1);
  std::printf("  one day after 28.02.2024 is %s (a leap year)\n",
              static_cast<const char*>(due.GetString(nullptr)));

  ZTCurrency price("19,99");
  ZTCurrency total(price);
  total.Mul(ZTCurrency(3));
  std::printf("  3 x %s = %s, exactly\n", static_cast<const char*>(price.GetString("#.##0,00")),
              static_cast<const char*>(total.GetString("#.##0,00")));
}

static void Tracking() {
  Section("Change tracking: what changed and what it was before");
  ZTString city("Berlin");
  city.SetUseDirtyFunction(true);
  city = "Hamburg";
  std::printf("  dirty=%d, was '%s', is '%s'\n", city.IsDirty(),
              static_cast<const char*>(city.GetOrgValue()->GetString(nullptr)),
              static_cast<const char*>(city));
  city.RestoreToOrgValue();
  std::printf("  restored: '%s', dirty=%d\n", static_cast<const char*>(city), city.IsDirty());
}

static void Parameters() {
  Section("Parameters parsed from one line");
  ZTParameter params("Customer=\"Miller & Sons\", Count=3, Express=Yes");
  std::printf("  %d entries: Customer=%s, Count=%d, Express=%d\n", params.GetCount(),
              static_cast<const char*>(params.GetString("Customer")), params.GetInt("Count"),
              params.GetBool("Express"));
  ZTString text;
  params.CopyIntoString(text);
  std::printf("  written back: %s\n", static_cast<const char*>(text));
}

static void Flags() {
  Section("Flags printed by name");
  static const _FlagStringEntry access[] = {{0x1, "Read"}, {0x2, "Write"}, {0x4, "Delete"},
                                            {0, nullptr}};
  ZTFlags rights(0x1 | 0x4, access);
  std::printf("  0x5 prints as '%s'\n", static_cast<const char*>(rights.GetString(nullptr)));
}

int main() {
  // Warnings would go to ztErrors.log in the working directory: not for a tour.
  ZTReportExcept::SetProtocolName(nullptr);
  try {
    Objects();
    Strings();
    Numbers();
    Tracking();
    Parameters();
    Flags();
  } catch (const ZTExcept& ex) {
    ex.Report();
    return 1;
  }
  return 0;
}
