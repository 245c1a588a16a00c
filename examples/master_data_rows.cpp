// The same master data by the server components, as rows: what a program calls that has no use for
// objects, and what a component of one's own would answer: master-data-rows FILE
#include "examples/story.h"

namespace {

using namespace example;

void Items(const String& props) {
  CreateObject("QDSVGLItemClass.ItemClassUpdate")
      ->Call("Create", props, Row({{"FNumber", "SHIP"}, {"FName", "Ship"}}));
  Long ships = CreateObject("QDSVGLItemClass.ItemClassInfo")
                   ->Call("ExistenceCheck", props, Missing, "SHIP")
                   .As<Long>();

  Long anna = CreateObject("QDSVGLItem.ItemUpdate")
                  ->Call("Create", props, ByRef(ships),
                         Row({{"FNumber", "S1"}, {"FName", "Anna of Bremen"}}))
                  .As<Long>();
  Print("ships",
        CreateObject("QDSVGLItem.ItemInfo")->Call("GetList", props, ByRef(ships)).As<Recordset>(),
        {"FNumber", "FName"});

  // The same as master data of any other kind: the class is a column of the row.
  CreateObject("QDSVGLItems.ItemUpdate")
      ->Call("Create", props,
             Row({{"FItemClassID", ships}, {"FNumber", "S2"}, {"FName", "Bertha"}}));
  auto ship =
      CreateObject("QDSVGLItems.ItemInfo")->Call("GetDetail", props, ByRef(anna)).As<Dictionary>();
  std::printf("%s\n", CStr(ship->Value("FName")).c_str());
}

void Units(const String& props) {
  Long group = CreateObject("QDSVGLUnit.UnitGroupUpdate")
                   ->Call("Create", props, Row({{"FName", "Length"}}))
                   .As<Long>();
  CreateObject("QDSVGLUnit.UnitUpdate")
      ->Call("Create", props, Row({{"FUnitGroupID", group}, {"FNumber", "M"}, {"FName", "metre"}}));
  Print("units", CreateObject("QDSVGLUnit.UnitInfo")->Call("GetList", props).As<Recordset>(),
        {"FNumber", "FName", "FCoefficient"});
  Print("groups of units",
        CreateObject("QDSVGLUnit.UnitGroupInfo")->Call("GetList", props).As<Recordset>(),
        {"FName", "FDefaultUnit"});

  // What the unit classes call: units and their groups by one component.
  CreateObject("QDSVGLUnit.MeasureUnitUpdate")
      ->Call("CreateUnit", props, group,
             Row({{"FNumber", "KM"}, {"FName", "kilometre"}, {"FCoefficient", 1000.0}}));
  const Long count = CreateObject("QDSVGLUnit.MeasureUnitInfo")
                         ->Call("GetUnitList", props, ByRef(group))
                         .As<Recordset>()
                         ->RecordCount();
  std::printf("%d units of length\n", static_cast<int>(count));
}

void SubMessages(const String& props) {
  const Long type = CreateObject("QDSVGLItem.SubMesTypeUpdate")
                        ->Call("Create", props, Row({{"FName", "Region"}}))
                        .As<Long>();
  CreateObject("QDSVGLItem.SubMesUpdate")
      ->Call("Create", props, Row({{"FTypeID", type}, {"FNumber", "N"}, {"FName", "North"}}));
  Print("types of sub-messages",
        CreateObject("QDSVGLItem.SubMesTypeInfo")->Call("GetList", props).As<Recordset>(),
        {"FTypeID", "FName"});
  Print("sub-messages",
        CreateObject("QDSVGLItem.SubMesInfo")->Call("GetList", props).As<Recordset>(),
        {"FTypeID", "FNumber", "FName"});
}

void Settlement(const String& props) {
  CreateObject("QDSVGLPayment.PaymentUpdate")
      ->Call("Create", props,
             Row({{"FNumber", "NET30"}, {"FName", "30 days net"}, {"FStandDays", 30}}));
  Print("terms of payment",
        CreateObject("QDSVGLPayment.PaymentInfo")->Call("GetList", props).As<Recordset>(),
        {"FNumber", "FName", "FStandDays"});

  Long transfer = CreateObject("QDSVGLSettType.SettTypeUpdate")
                      ->Call("Create", props, Row({{"FNumber", "TRANSFER"}, {"FName", "Transfer"}}))
                      .As<Long>();
  auto row = CreateObject("QDSVGLSettType.SettTypeInfo")
                 ->Call("GetDetail", props, ByRef(transfer))
                 .As<Dictionary>();
  row->Value("FName", "Bank transfer");
  CreateObject("QDSVGLSettType.SettTypeUpdate")->Call("Update", props, ByRef(transfer), row);
  std::printf("%s, version %s\n", CStr(row->Value("FName")).c_str(),
              CStr(row->Value("FVersion")).c_str());

  CreateObject("QDSVGLSettAcct.SettAcctUpdate")
      ->Call("Create", props, Row({{"FNumber", "GIRO"}, {"FName", "Giro account"}}));
  Print("settlement accounts",
        CreateObject("QDSVGLSettAcct.SettAcctInfo")->Call("GetList", props).As<Recordset>(),
        {"FNumber", "FName"});

  Long crossed = CreateObject("QDSVGLCheckType.CheckTypeUpdate")
                     ->Call("Create", props, Row({{"FNumber", "CROSSED"}, {"FName", "Crossed"}}))
                     .As<Long>();
  CreateObject("QDSVGLCheckType.CheckTypeUpdate")->Call("Delete", props, ByRef(crossed));
  const Long left = CreateObject("QDSVGLCheckType.CheckTypeInfo")
                        ->Call("GetList", props)
                        .As<Recordset>()
                        ->RecordCount();
  std::printf("%d check types\n", static_cast<int>(left));
}

void SetUp(const String& props) {
  Items(props);
  Units(props);
  SubMessages(props);
  Settlement(props);
}

}  // namespace

int main(int count, char** arguments) { return Tell(count, arguments, SetUp); }
