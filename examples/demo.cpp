// A short tour of the zt foundation: classes that declare themselves once, are
// created by name, live by reference count and report failures as exceptions.
#include <cstdio>

#include "zt.h"

// An application class: two lines make it creatable by name.
class Customer : public ZTObject {
  ZT_DECLARE_CLASS(Customer, ZTObjectCreator)
 public:
  ~Customer() override { std::printf("  Customer destroyed\n"); }
};
ZT_IMPLEMENT_CLASS(Customer, ZTObject, ZTObjectCreator, "customer")

static void Section(const char* _Title) { std::printf("\n== %s\n", _Title); }

int main() {
  // Keep warnings out of the working directory; show them on the console.
  ZTReportExcept::SetProtocolName(nullptr);

  Section("Creation by class name");
  ZTObject* obj = ZTObjectCreator::CreateObject("Customer");
  std::printf("  created a %s (type name lookup \"customer\" works too: %s)\n",
              obj->GetClassName(), ZTObjectCreator::IsValidClassName("customer") ? "yes" : "no");

  Section("Reference counting");
  std::printf("  Attach -> %d\n", obj->Attach());
  std::printf("  Attach -> %d\n", obj->Attach());
  std::printf("  Detach -> %d\n", obj->Detach());
  std::printf("  Detach -> ");
  std::fflush(stdout);
  const int left = obj->Detach();  // the last reference frees the object
  std::printf("  (count %d)\n", left);

  Section("A failed creation reported as an exception");
  try {
    ZTClassFactory::CreateObject("Supplier", nullptr);
  } catch (const ZTExcept& ex) {
    char line[256];
    ex.GetErrorMessage(line, sizeof line, 0, true);
    std::printf("  caught: %s\n", line);
  }

  Section("A violated precondition");
  try {
    ZTClassFactory::CreateObject("customer", ZTPArray::ClassGetType());
  } catch (const ZTExcept& ex) {
    std::printf("  the reporter shows it on standard error:\n");
    std::fflush(stdout);
    ex.Report();
  }
  return 0;
}
