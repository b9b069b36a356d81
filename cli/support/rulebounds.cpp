#include "support/rulebounds.h"

namespace seqlattice_cli {

std::vector<std::string> ruleSortNames(bool toolMeasures) {
  std::vector<std::string> names = {"support", "confidence", "cause"};
  if (toolMeasures)
    names.insert(names.end(), {"lift", "leverage", "conviction"});
  return names;
}

bool isToolMeasure(const std::string& name) {
  return name == "lift" || name == "leverage" || name == "conviction";
}

void setRuleSort(RuleBounds* bounds, const std::string& name) {
  bounds->sortName = name;
  bounds->sortLetter = name == "support" ? 'S' : name == "cause" ? 'A' : 'C';
}

void addRuleBoundOptions(CLI::App* command, RuleBounds* bounds,
                         bool toolMeasures) {
  struct Bound {
    const char* name;
    double* value;
    const char* help;
  };
  for (const Bound& bound :
       {Bound{"--min-support", &bounds->minSupport, "Least rule support"},
        Bound{"--max-support", &bounds->maxSupport, "Largest rule support"},
        Bound{"--min-confidence", &bounds->minConfidence, "Least confidence"},
        Bound{"--max-confidence", &bounds->maxConfidence, "Largest confidence"},
        Bound{"--min-cause", &bounds->minCause, "Least cause"},
        Bound{"--max-cause", &bounds->maxCause, "Largest cause"}}) {
    command->add_option(bound.name, *bound.value, bound.help)
        ->check(CLI::Range(0.0, 1.0))
        ->capture_default_str();
  }
  command
      ->add_option_function<std::string>(
          "--sort",
          [bounds](const std::string& name) { setRuleSort(bounds, name); },
          toolMeasures ? "Order rules by support, confidence, cause, lift, "
                         "leverage or conviction (decreasing)"
                       : "Order rules by support, confidence or cause "
                         "(decreasing)")
      ->check(CLI::IsMember(ruleSortNames(toolMeasures)))
      ->default_str("confidence");
  command->add_flag("--maximal", bounds->maximal,
                    "Only rules of patterns that no longer pattern extends");
}

}  // namespace seqlattice_cli
