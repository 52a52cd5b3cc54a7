// tavoreg plan
#include <iostream>

#include "standalone/cli/commands.h"
#include "standalone/session/embedded_session.h"

namespace standalone {

namespace {

struct Runner {
  int operator()(const PlanCreateArguments& arguments) const { return CreatePlan(arguments); }
  int operator()(const PlanShowArguments& arguments) const { return ShowPlan(arguments); }
  int operator()(const PlanCheckArguments& arguments) const { return CheckPlanFile(arguments); }
};

}  // namespace

int RunPlanCommand(const PlanArguments& arguments) {
  SessionOptions options;
  options.version = TAVOREG_VERSION;
  options.messages = &std::cerr;
  Session session(options);
  const SessionScope scope(session);
  return std::visit(Runner(), arguments);
}

}  // namespace standalone
