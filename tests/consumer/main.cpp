// Uses what a program of someone else would: a class of the library, a container, a server
// component of its own, and an error.
#include <cstdio>

#include "qdclgl/qdclgl.h"

namespace {

using namespace qdclgl;

class GroupReader final : public Object {
 public:
  std::string_view ClassName() const override { return "GroupReader"; }

  Variant Invoke(std::string_view name, CallKind kind, std::span<Argument> arguments) override {
    if (name != "GetList") return Object::Invoke(name, kind, arguments);
    auto list = Recordset::Create({"FGroupID", "FName"});
    list->AddRow({7, "Receipts"});
    return Variant(list);
  }
};

int failures = 0;

void Expect(bool condition, const char* what) {
  std::printf("%s: %s\n", condition ? "ok" : "FAILED", what);
  if (!condition) ++failures;
}

}  // namespace

int main() {
  RegisterComponent("QDSVGLVoucherGroup.VoucherGroupInfo",
                    [] { return Ref<Object>(Make<GroupReader>()); });

  auto row = Make<Dictionary>();
  row->Value("FName", "Payments");
  Expect(row->Lookup("FName") && row->Modified(), "a Dictionary keeps a value");

  auto groups = Make<VoucherGroupSet>();
  Expect(groups->CreateNew("Transfers")->Name() == "Transfers", "CreateNew makes a named group");
  Expect(groups->Count() == 1, "the list comes from the component");
  Expect(groups->GetCurrent()->VoucherGroupID() == 7, "an entity is made of a row");
  Expect(groups->Get("Count").As<Long>() == 1, "a property is read by its name");

  std::int32_t number = 0;
  try {
    groups->CreateNew("Transfers")->SaveChanges();
  } catch (const Error& error) {
    number = error.number();
  }
  Expect(number == 429, "a component that nobody registered is error 429");
  return failures == 0 ? 0 : 1;
}
