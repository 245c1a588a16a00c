// A server component of one's own with its members in rows, and a class of the library that works
// through it.
#include <cstdio>
#include <vector>

#include "qdclgl/qdclgl.h"

using namespace qdclgl;

// Keeps voucher groups in memory. Each operation makes a component and lets it go behind it, so the
// groups stand elsewhere.
class GroupStore final : public Object {
  QD_MEMBERS(GroupStore, Object, Creatable, "Voucher groups, kept in memory.")

 public:
  QD_METHOD(Ref<Recordset>, GetList,
            (std::string_view PropsString, Long Options = {}, const String& Filter = {},
             const String& Sort = {}),
            "All groups, in the order that they came in.")
  QD_METHOD(Ref<Dictionary>, GetDetail, (std::string_view PropsString, Long GroupID),
            "The row of a group. Error 5 when there is none.")
  QD_METHOD(Long, Create, (std::string_view PropsString, const Ref<Dictionary>& Row),
            "Keeps a new group; its id.")
  QD_METHOD(void, Update, (std::string_view PropsString, Long GroupID, const Ref<Dictionary>& Row),
            "Puts a row in place of a group's. Error 5 when there is none.")

 private:
  static Ref<Dictionary>& At(Long id) {
    if (id < 1 || id > static_cast<Long>(groups.size())) {
      throw Error(error_number::kInvalidCall, "GroupStore", "There is no such group.");
    }
    return groups[static_cast<std::size_t>(id - 1)];
  }

  static inline std::vector<Ref<Dictionary>> groups;
};

QD_DEFINE_MEMBERS(GroupStore)

Ref<Recordset> GroupStore::GetList(std::string_view, Long, const String&, const String&) {
  auto list = Recordset::Create({"FGroupID", "FName"});
  for (auto& group : groups) list->AddRow({group->Value("FGroupID"), group->Value("FName")});
  return list;
}

Ref<Dictionary> GroupStore::GetDetail(std::string_view, Long GroupID) { return At(GroupID); }

Long GroupStore::Create(std::string_view, const Ref<Dictionary>& Row) {
  groups.push_back(CloneDictionary(Row));
  const auto id = static_cast<Long>(groups.size());
  groups.back()->Value("FGroupID", id);
  return id;
}

void GroupStore::Update(std::string_view, Long GroupID, const Ref<Dictionary>& Row) {
  At(GroupID) = CloneDictionary(Row);
}

int main() {
  for (const char* name :
       {"QDSVGLVoucherGroup.VoucherGroupInfo", "QDSVGLVoucherGroup.VoucherGroupUpdate"}) {
    RegisterComponent(name, [] { return Ref<Object>(Make<GroupStore>()); });
  }
  try {
    auto groups = Make<VoucherGroupSet>();
    groups->CreateNew("Receipts")->SaveChanges();
    groups->CreateNew("Payments")->SaveChanges();
    for (auto& group : groups) {
      std::printf("%d  %s\n", static_cast<int>(group.VoucherGroupID()), group.Name().c_str());
    }
    CreateObject("QDSVGLVoucherGroup.VoucherGroupInfo")->Call("GetDetail", "", 3);
  } catch (const Error& error) {
    std::printf("%s\n", error.what());
  }
}
