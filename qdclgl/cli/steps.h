// The steps of a voucher's workflow, from the check to the posting and back.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "qdclgl/cli/program.h"
#include "qdclgl/vouchers/voucher_set.h"

namespace qdclgl::cli {

struct Step {
  const char* name;
  const char* help;
  const char* filter;  // the vouchers that --all takes the step with
  const char* done;    // "12 vouchers checked"
  // Error when the voucher is not in the state that the step needs.
  void (*take)(VoucherSet& vouchers, Long id);
};

// The voucher with that id. NotFound when there is none.
Ref<Voucher> OpenVoucher(VoucherSet& vouchers, Long id);

std::span<const Step> Steps();
inline constexpr std::string_view kRemoval = "remove";
// One of them, by its name.
const Step& StepNamed(std::string_view name);

// Takes vouchers through a step in batches and says how many; what is refused is told on the
// error output and leaves the others alone.
ExitCode TakeStep(const Step& step, const std::vector<Long>& ids, const std::string& props,
                  const Console& console);
ExitCode TakeStepOnAll(const Step& step, const std::string& props, const Console& console);

// A run of a step's command. UsageError unless there are either ids or all.
int RunStep(const Step& step, const Login& login, const std::vector<Long>& ids, bool all,
            const Console& console);

}  // namespace qdclgl::cli
