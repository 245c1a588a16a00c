// The master data that vouchers refer to: items and their classes, units, sub-messages, terms of
// payment, settlement and checks: master-data FILE
#include <tuple>

#include "examples/story.h"

namespace {

using namespace example;

void ItemsOfOnesOwn() {
  Ref<ItemClassSet> classes = Make<ItemClassSet>();
  Ref<ItemClass> contracts = classes->CreateNew("CONTRACT", "Contract");
  constexpr Long kInteger = 3, kText = 200;
  Ref<CustomPropertySet> fields = contracts->CustomProperties();
  Ref<CustomProperty> manager = fields->Add("Manager", kText, "", 40);
  manager->Search(1);
  fields->Add("Floors", kInteger);
  contracts->SaveChanges();

  // The books have given each field a column.
  manager = classes->Item("CONTRACT")->CustomProperties()->Item("Manager");
  Ref<Item> roof = Variant(Make<ItemSet>()->CreateNew(contracts->ItemClassID(), 0)).As<Item>();
  roof->Number("2024-17");
  roof->Name("Roof");
  roof->Properties()->Item(manager->SQLColumnName())->Value("Berta");
  roof->SaveChanges();
  std::printf("%s is managed by %s\n", roof->Name().c_str(),
              CStr(roof->Properties()->Item(manager->SQLColumnName())->Value()).c_str());

  for (const auto& field : *contracts->CustomProperties()) {
    std::printf("field %s\n", field.Name().c_str());
  }
}

void Units() {
  Ref<MeasureUnitGroupSet> groups = Make<MeasureUnitGroupSet>();
  Ref<MeasureUnitGroup> weights = groups->CreateNew();
  weights->Name("Weight");
  weights->SaveChanges();

  Ref<MeasureUnitSet> units = Make<MeasureUnitSet>();
  units->UnitGroupID(weights->GroupID());
  for (const auto& [number, name, coefficient] :
       {std::tuple("KG", "kilogram", 1.0), std::tuple("T", "tonne", 1000.0)}) {
    Ref<MeasureUnit> unit = units->CreateNew();
    unit->Number(number);
    unit->Name(name);
    unit->Coefficient(coefficient);
    unit->SaveChanges();
  }
  weights->Refresh();
  std::printf("%s is counted in %s\n", weights->Name().c_str(), weights->DefaultUnit().c_str());
}

void SubMessages() {
  Ref<SubMesTypeSet> types = Make<SubMesTypeSet>();
  Ref<SubMesType> regions = types->CreateNew();
  regions->Name("Region");
  regions->SaveChanges();

  Ref<SubMesSet> entries = Make<SubMesSet>();
  Ref<SubMes> north = Variant(entries->CreateNew(regions->TypeID())).As<SubMes>();
  north->Number("N");
  north->Name("North");
  north->SaveChanges();
  std::printf("%s: %s has the id %d\n", regions->Name().c_str(), north->Name().c_str(),
              static_cast<int>(north->ItemID()));
}

void TermsOfPayment() {
  Ref<PaymentSet> terms = Make<PaymentSet>();
  Ref<Payment> month = terms->CreateNew("NET30", "30 days net");
  month->StandDays(30);
  month->SaveChanges();
  std::printf("%s: %d days\n", terms->Item(month->ItemID())->Name().c_str(), month->StandDays());
}

void Settlement() {
  Ref<SettTypeSet> types = Make<SettTypeSet>();
  Ref<SettType> transfer = types->CreateNew("TRANSFER", "Bank transfer");
  transfer->AccountNumber("1000");
  transfer->SaveChanges();

  Ref<SettAcctSet> accounts = Make<SettAcctSet>();
  Ref<SettAcct> giro = accounts->CreateNew("GIRO", "Giro account");
  giro->AccountNumber("1000");
  giro->SaveChanges();

  Ref<CheckTypeSet> checks = Make<CheckTypeSet>();
  Ref<CheckType> crossed = checks->CreateNew("CROSSED", "Crossed check");
  crossed->CheckAcctNumber("1000");
  crossed->SaveChanges();
  std::printf("%s and %s go by account %d\n", transfer->Name().c_str(), giro->Name().c_str(),
              static_cast<int>(giro->AccountID()));
}

void SetUp(const String&) {
  Make<AccountSet>()->CreateNew("1000", "Bank")->SaveChanges();
  ItemsOfOnesOwn();
  Units();
  SubMessages();
  TermsOfPayment();
  Settlement();
}

}  // namespace

int main(int count, char** arguments) { return Tell(count, arguments, SetUp); }
