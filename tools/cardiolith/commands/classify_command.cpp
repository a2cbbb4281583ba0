#include <cardiolith/analysis/blood_pressure_analysis.hpp>
#include <cardiolith/analysis/plausibility.hpp>
#include <iostream>
#include <memory>
#include <string>

#include "commands/commands.hpp"
#include "input/pressure_input.hpp"
#include "render/category_text.hpp"
#include "render/json_writer.hpp"

namespace cardiolith::tool {
namespace {

struct ClassifyOptions {
  std::string pair;
  bool json = false;
};

void runClassify(const ClassifyOptions& options) {
  const auto input = parsePressure(options.pair, true);
  const auto category = BloodPressureAnalyzer::result(input.systolic, input.diastolic);
  if (options.json) {
    JsonWriter json(std::cout);
    json.beginObject();
    json.key("systolic").integer(input.systolic);
    json.key("diastolic").integer(input.diastolic);
    if (input.pulse) json.key("pulse").integer(*input.pulse);
    json.key("category").string(categoryKey(category));
    json.key("name").string(categoryName(category));
    json.endObject();
    std::cout << '\n';
    return;
  }
  std::cout << input.systolic << '/' << input.diastolic << " mmHg"
            << (input.pulse ? ", pulse " + std::to_string(*input.pulse) : "") << ": "
            << categoryWithRule(input.systolic, input.diastolic) << "\n";
  if (isHypertensiveCrisis(input.systolic, input.diastolic)) std::cout << kCrisisAdvice << '\n';
}

}  // namespace

void addClassifyCommand(CLI::App& app) {
  auto options = std::make_shared<ClassifyOptions>();
  auto* command = app.add_subcommand("classify", "Tell the category of a systolic/diastolic pair");
  command
      ->add_option("reading", options->pair,
                   "Systolic/diastolic in mmHg (135/95), or with the pulse (135/95/71), as add takes it")
      ->required();
  command->add_flag("--json", options->json, "Write JSON for scripts");
  command->callback([options] { runClassify(*options); });
}

}  // namespace cardiolith::tool
