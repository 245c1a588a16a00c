// The peer of the Python module: the classes of a voucher, bound by hand with pybind11 to the same
// library, member by member, as one would without rows to make them from.
#include <pybind11/pybind11.h>

#include "qdclgl/qdclgl.h"
#include "qdclgl/server/server.h"

PYBIND11_DECLARE_HOLDER_TYPE(T, qdclgl::Ref<T>, true)

namespace py = pybind11;

namespace pybind11::detail {

// Amounts are decimal.Decimal, as they are in the module.
template <>
struct type_caster<qdclgl::Currency> {
  PYBIND11_TYPE_CASTER(qdclgl::Currency, const_name("Decimal"));

  bool load(handle source, bool) {
    value = qdclgl::CCur(qdclgl::Variant(std::string(py::str(source))));
    return true;
  }
  static handle cast(qdclgl::Currency amount, return_value_policy, handle) {
    static const auto& decimal = *new object(module_::import("decimal").attr("Decimal"));
    return decimal(amount.ToText()).release();
  }
};

}  // namespace pybind11::detail

namespace {

using namespace qdclgl;

// What a program in C++ does: opens a voucher, changes a line, saves it.
void EditVouchers(Long id, int count, const std::string& text) {
  const auto vouchers = Make<VoucherSet>();
  for (int i = 0; i < count; ++i) {
    const auto voucher = vouchers->Item(id);
    voucher->Entries()->Item(1)->Explanation(text + std::to_string(i));
    voucher->SaveChanges();
  }
}

void Open(const std::string& books) {
  server::RegisterServerComponents();
  CreateObject("QDSVGLSession.SessionUpdate")->Call("Login", books, "administrator", "");
}

}  // namespace

PYBIND11_MODULE(peer, module) {
  py::register_exception<Error>(module, "Error");
  module.def("open", Open);
  module.def("edit_vouchers", EditVouchers);
  py::class_<VoucherEntry, Ref<VoucherEntry>>(module, "VoucherEntry")
      .def_property(
          "AccountID", [](VoucherEntry& self) { return self.AccountID(); },
          [](VoucherEntry& self, Long value) { self.AccountID(value); })
      .def_property(
          "Explanation", [](VoucherEntry& self) { return self.Explanation(); },
          [](VoucherEntry& self, const std::string& value) { self.Explanation(value); })
      .def_property(
          "Debit", [](VoucherEntry& self) { return self.Debit(); },
          [](VoucherEntry& self, Currency value) { self.Debit(value); })
      .def("IsEmpty", [](VoucherEntry& self) { return self.IsEmpty(); });
  py::class_<VoucherEntrySet, Ref<VoucherEntrySet>>(module, "VoucherEntrySet")
      .def_property_readonly("Count", [](VoucherEntrySet& self) { return self.Count(); })
      .def("Item", [](VoucherEntrySet& self, Long index) { return self.Item(index); })
      .def(
          "__iter__",
          [](VoucherEntrySet& self) {
            return py::make_iterator<py::return_value_policy::reference>(self.begin(), self.end());
          },
          py::keep_alive<0, 1>());
  py::class_<Voucher, Ref<Voucher>>(module, "Voucher")
      .def_property_readonly("Entries", [](Voucher& self) { return self.Entries(); })
      .def("SaveChanges", [](Voucher& self) { self.SaveChanges(); });
  py::class_<VoucherSet, Ref<VoucherSet>>(module, "VoucherSet")
      .def(py::init([] { return Make<VoucherSet>(); }))
      .def("__getitem__", [](VoucherSet& self, Long id) { return self.Item(id); });
}
