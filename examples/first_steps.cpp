// A first look: a server component of one's own for voucher groups, and a program that lists,
// changes and saves them through the library.
#include <cstdio>
#include <map>

#include "qdclgl/qdclgl.h"

namespace {

using namespace qdclgl;

// Keeps the groups in memory. A component is called by name, so it needs no class of the library
// but the containers that travel.
class GroupStore final : public Object {
 public:
  std::string_view ClassName() const override { return "GroupStore"; }

  Variant Invoke(std::string_view name, CallKind kind, std::span<Argument> arguments) override {
    if (name == "GetList") {
      auto list = Recordset::Create({"FGroupID", "FName"});
      for (const auto& [id, group] : Groups()) list->AddRow({id, group->Value("FName")});
      return Variant(list);
    }
    if (name == "GetDetail") {
      const auto group = Groups().find(arguments[1].As<Long>());
      return group == Groups().end() ? Variant(Nothing) : Variant(group->second);
    }
    if (name == "Create") {
      const auto id = static_cast<Long>(Groups().size() + 1);
      auto group = CloneDictionary(arguments[1].As<Dictionary>());
      group->Value("FGroupID", id);
      Groups()[id] = group;
      return id;
    }
    if (name == "Update") {
      Groups()[arguments[1].As<Long>()] = CloneDictionary(arguments[2].As<Dictionary>());
      return {};
    }
    return Object::Invoke(name, kind, arguments);
  }

 private:
  static std::map<Long, Ref<Dictionary>>& Groups() {
    static std::map<Long, Ref<Dictionary>> groups;
    return groups;
  }
};

void Print(VoucherGroupSet& groups) {
  for (auto& group : groups) {
    std::printf("  %d  %s\n", static_cast<int>(group.VoucherGroupID()), group.Name().c_str());
  }
}

}  // namespace

int main() {
  for (const char* component :
       {"QDSVGLVoucherGroup.VoucherGroupInfo", "QDSVGLVoucherGroup.VoucherGroupUpdate"}) {
    RegisterComponent(component, [] { return Ref<Object>(Make<GroupStore>()); });
  }

  try {
    auto groups = Make<VoucherGroupSet>();
    for (const char* name : {"Receipts", "Payments", "Transfers"}) {
      groups->CreateNew(name)->SaveChanges();
    }
    std::puts("Three groups, saved:");
    Print(*groups);

    auto group = groups->Item(2);
    group->Name("Payments by bank");
    group->SaveChanges();
    groups->Refresh();
    std::puts("One of them renamed:");
    Print(*groups);

    std::puts("All that the row holds:");
    for (auto& property : group->Properties()) {
      std::printf("  %s = %s\n", property.Name().c_str(), CStr(property.Value()).c_str());
    }
  } catch (const Error& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
