// Validates FHIR R4 resources in JSON files against the R4 structure definitions, with every element the
// definitions do not know reported as an error. Usage: node validate.js FILE...
// Exits 1, listing the errors, when any file is invalid. Warnings are not errors: the package holds no
// LOINC, so it warns that every LOINC code is missing from the (example) observation-codes value set.
'use strict';
const fs = require('fs');
const { Fhir } = require('fhir');

const fhir = new Fhir();
let failed = false;
for (const file of process.argv.slice(2)) {
  const resource = JSON.parse(fs.readFileSync(file, 'utf8'));
  const result = fhir.validate(resource, { errorOnUnexpected: true });
  const problems = result.messages.filter((message) => message.severity === 'error' || message.severity === 'fatal');
  if (result.valid && problems.length === 0) {
    console.log(`${file}: valid FHIR R4 ${resource.resourceType}`);
    continue;
  }
  failed = true;
  console.log(`${file}: INVALID`);
  for (const message of problems) console.log(`  ${message.severity} at ${message.location}: ${message.message}`);
}
process.exit(failed ? 1 : 0);
