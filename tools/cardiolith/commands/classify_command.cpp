#include <cardiolith/analysis/blood_pressure_analysis.hpp>
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
  const auto input = parsePressure(options.pair, false);
  const auto category = BloodPressureAnalyzer::result(input.systolic, input.diastolic);
  if (options.json) {
    JsonWriter json(std::cout);
    json.beginObject();
    json.key("systolic").integer(input.systolic);
    json.key("diastolic").integer(input.diastolic);
    json.key("category").string(categoryKey(category));
    json.key("name").string(categoryName(category));
    json.endObject();
    std::cout << '\n';
    return;
  }
  std::cout << input.systolic << '/' << input.diastolic << " mmHg: " << categoryName(category) << " ("
            << categoryRule(category) << ")\n";
}

}  // namespace

void addClassifyCommand(CLI::App& app) {
  auto options = std::make_shared<ClassifyOptions>();
  auto* command = app.add_subcommand("classify", "Tell the category of a systolic/diastolic pair");
  command->add_option("pair", options->pair, "Systolic/diastolic in mmHg, e.g. 135/95")->required();
  command->add_flag("--json", options->json, "Write JSON for scripts");
  command->callback([options] { runClassify(*options); });
}

}  // namespace cardiolith::tool
