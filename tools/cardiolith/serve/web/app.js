// The log's page: reads and changes the log through the server's JSON API. Every text that comes from the
// log is put into the page with textContent, never as HTML, so a note can't run script.
"use strict";

const token = document.querySelector('meta[name="cardiolith-token"]').content;

const categoryNames = {
  low: "Low",
  normal: "Normal",
  elevated: "Elevated",
  high: "High",
  veryHigh: "Very high",
  unreadable: "Unreadable",
};

async function api(path, options = {}) {
  const headers = { "X-Cardiolith-Token": token };
  if (options.body) headers["Content-Type"] = "application/json";
  const response = await fetch(path, { ...options, headers, cache: "no-store" });
  const body = await response.json().catch(() => ({ error: "the server's answer could not be read" }));
  if (!response.ok) throw new Error(body.error || `the server answered ${response.status}`);
  return body;
}

function element(tag, text, className) {
  const node = document.createElement(tag);
  if (text !== undefined) node.textContent = text;
  if (className) node.className = className;
  return node;
}

function localDateTime(date) {
  const pad = (n) => String(n).padStart(2, "0");
  return `${date.getFullYear()}-${pad(date.getMonth() + 1)}-${pad(date.getDate())}T${pad(date.getHours())}:${pad(date.getMinutes())}`;
}

function shownDate(iso) {
  return localDateTime(new Date(iso)).replace("T", " ");
}

function periodQuery() {
  const form = document.getElementById("period-form");
  const period = form.period.value;
  if (period === "all") return "";
  if (period === "range") {
    const parts = [];
    if (form.from.value) parts.push(`from=${encodeURIComponent(form.from.value)}`);
    if (form.to.value) parts.push(`to=${encodeURIComponent(form.to.value)}`);
    return parts.join("&");
  }
  return `last=${period}d`;
}

function summaryQuery() {
  const form = document.getElementById("period-form");
  const period = form.period.value;
  if (period === "range" && form.from.value) {
    return `from=${encodeURIComponent(form.from.value)}` + (form.to.value ? `&to=${encodeURIComponent(form.to.value)}` : "");
  }
  return `days=${period === "30" ? 30 : 7}`;
}

// Each cell carries its column's name, which the narrow layout shows before the value.
function cell(label, text, className) {
  const node = element("td", text, className);
  node.dataset.label = label;
  return node;
}

// The report covers whole days: the chosen range, or the last 7 or 30 days (7 for "All").
function reportQuery() {
  const form = document.getElementById("period-form");
  if (form.period.value === "range" && form.from.value) return periodQuery();
  return `last=${form.period.value === "30" ? 30 : 7}d`;
}

function renderReadings(readings) {
  const body = document.querySelector("#reading-table tbody");
  closeEdit();
  body.replaceChildren();
  for (const reading of readings) {
    const row = document.createElement("tr");
    row.dataset.id = reading.id;
    row.append(cell("Date", shownDate(reading.date), "date"));
    row.append(cell("Systolic/diastolic", `${reading.systolic}/${reading.diastolic}`, "number"));
    row.append(cell("Pulse", String(reading.pulse), "number"));
    const category = cell("Category");
    category.append(element("span", categoryNames[reading.category] || reading.category, `category ${reading.category}`));
    row.append(category);
    row.append(cell("Tags", reading.tags.join(", ")));
    row.append(cell("Note", reading.notes || "", "note"));
    row.append(changeCell(reading));
    body.append(row);
  }
}

// The Edit and Delete buttons of a row, named with the reading so that a screen reader tells them apart.
function changeCell(reading) {
  const node = cell("Change", undefined, "change");
  const what = `the reading of ${shownDate(reading.date)}, ${reading.systolic}/${reading.diastolic}`;
  const edit = element("button", "Edit", "secondary edit");
  edit.type = "button";
  edit.setAttribute("aria-label", `Edit ${what}`);
  edit.addEventListener("click", () => openEdit(reading, edit.closest("tr")));
  const remove = element("button", "Delete", "secondary delete");
  remove.type = "button";
  remove.setAttribute("aria-label", `Delete ${what}`);
  remove.addEventListener("click", () => deleteReading(reading));
  node.append(edit, remove);
  return node;
}

// A message beside a form or the list: a refusal in red, news of a change done ("Saved.") in green.
function say(node, text, done = false) {
  node.textContent = text;
  node.classList.toggle("done", done);
}

// A change done, and the server's advice when the values are in the crisis range: that stays red, as it
// asks for action.
function sayDone(node, text, advice) {
  say(node, advice ? `${text} ${advice}` : text, !advice);
}

function changeMessage(text, done = false) {
  say(document.getElementById("change-message"), text, done);
}

function focusEditButton(id) {
  const button = document.querySelector(`#reading-table tr[data-id="${CSS.escape(id)}"] button.edit`);
  (button || document.getElementById("undo-button")).focus();
}

// The edit form opens in a row of its own under the reading, filled with its values.
let editing = null;

function openEdit(reading, row) {
  closeEdit();
  editing = reading;
  const form = document.getElementById("edit-form");
  form.reset();
  document.getElementById("edit-message").textContent = "";
  document.getElementById("edit-heading").textContent = `Edit the reading of ${shownDate(reading.date)}`;
  form.systolic.value = reading.systolic;
  form.diastolic.value = reading.diastolic;
  form.pulse.value = reading.pulse;
  form.at.value = localDateTime(new Date(reading.date));
  form.note.value = reading.notes || "";
  for (const box of form.querySelectorAll('input[name="tag"]')) box.checked = reading.tags.includes(box.value);
  const formRow = element("tr", undefined, "editing");
  const formCell = element("td");
  formCell.colSpan = row.children.length;
  formCell.append(form);
  formRow.append(formCell);
  row.after(formRow);
  form.systolic.focus();
}

function closeEdit() {
  const form = document.getElementById("edit-form");
  const formRow = form.closest("tr");
  document.getElementById("edit-holder").append(form);
  if (formRow) formRow.remove();
  editing = null;
}

function cancelEdit() {
  const id = editing && editing.id;
  closeEdit();
  if (id) focusEditButton(id);
}

function checkedTags(form) {
  return [...form.querySelectorAll('input[name="tag"]:checked')].map((box) => box.value);
}

// Only what was changed is sent, so the undo history names the edit as one would type it ("edit 1a2b
// --pulse 70"); the pressures go as a pair, as `edit` takes them.
function editedMembers(form, reading) {
  const change = {};
  if (form.systolic.value !== String(reading.systolic) || form.diastolic.value !== String(reading.diastolic)) {
    change.systolic = wholeNumber(form.systolic.value);
    change.diastolic = wholeNumber(form.diastolic.value);
  }
  if (form.pulse.value !== String(reading.pulse)) change.pulse = wholeNumber(form.pulse.value);
  // The page shows minutes; an untouched date keeps its seconds.
  if (form.at.value !== localDateTime(new Date(reading.date))) change.at = form.at.value.replace("T", " ");
  if (form.note.value !== (reading.notes || "")) change.note = form.note.value;
  const tags = checkedTags(form);
  if (tags.length !== reading.tags.length || tags.some((tag) => !reading.tags.includes(tag))) change.tags = tags;
  if (Object.keys(change).length > 0 && form.force.checked) change.force = true;
  return change;
}

async function saveEdit(event) {
  event.preventDefault();
  const form = event.target;
  const reading = editing;
  const message = document.getElementById("edit-message");
  message.textContent = "";
  const change = editedMembers(form, reading);
  if (Object.keys(change).length === 0) {
    cancelEdit();
    changeMessage("Nothing changed.", true);
    return;
  }
  try {
    const answer = await api(`/api/readings/${encodeURIComponent(reading.id)}`, { method: "PATCH", body: JSON.stringify(change) });
    closeEdit();
    await refresh();
    const newValues = "systolic" in change || "diastolic" in change;
    sayDone(document.getElementById("change-message"), "Saved.", newValues ? answer.advice : undefined);
    focusEditButton(reading.id);
  } catch (error) {
    message.textContent = error.message;
  }
}

async function deleteReading(reading) {
  closeEdit();
  try {
    const answer = await api(`/api/readings/${encodeURIComponent(reading.id)}`, { method: "DELETE" });
    await refresh();
    changeMessage(`${answer.message}. Undo brings it back.`, true);
  } catch (error) {
    changeMessage(error.message);
  }
  document.getElementById("undo-button").focus();
}

async function undoLastChange() {
  closeEdit();
  try {
    const answer = await api("/api/undo", { method: "POST" });
    await refresh();
    changeMessage([`Undid: ${answer.undid}`, ...answer.changes].join("\n"), true);
  } catch (error) {
    changeMessage(error.message);
  }
}

function oneDecimal(value) {
  return value === null || value === undefined ? "-" : value.toFixed(1);
}

function renderSummary(summary) {
  const text = document.getElementById("summary-text");
  if (!summary.current) {
    text.textContent = "No readings in this period.";
    return;
  }
  const c = summary.current;
  let words = `${summary.readings} ${summary.readings === 1 ? "reading" : "readings"}; average ${oneDecimal(c.systolic)}/${oneDecimal(c.diastolic)} mmHg, pulse ${oneDecimal(c.pulse)}`;
  if (summary.previous) {
    const ch = summary.change;
    words += `; change from the period before: systolic ${oneDecimal(ch.systolic)}%, diastolic ${oneDecimal(ch.diastolic)}%`;
  }
  text.replaceChildren(document.createTextNode(words + ". Category of the average: "));
  text.append(element("span", categoryNames[summary.category] || "-", `category ${summary.category}`));
}

// The chart of the last 7 or 30 days (30 for a range or all); hidden when the period has no readings.
function showChart(hasReadings) {
  const chart = document.getElementById("chart");
  if (!hasReadings) {
    chart.hidden = true;
    return;
  }
  chart.onload = () => (chart.hidden = false);
  chart.onerror = () => (chart.hidden = true);
  const days = document.getElementById("period-form").period.value === "7" ? 7 : 30;
  // The chart's labels need 560 pixels; on a narrower screen its frame scrolls sideways.
  const width = Math.max(560, Math.round(chart.parentElement.clientWidth));
  chart.src = `/api/chart.svg?days=${days}&width=${width}&t=${Date.now()}`;
}

async function refresh() {
  const message = document.getElementById("list-message");
  try {
    const [list, summary] = await Promise.all([api(`/api/readings?${periodQuery()}`), api(`/api/summary?${summaryQuery()}`)]);
    renderReadings(list.readings);
    renderSummary(summary);
    document.getElementById("report-link").href = `/report?${reportQuery()}`;
    updateExportLinks();
    showChart(list.readings.length > 0);
    message.textContent = list.readings.length === 0 ? "No readings in this period." : "";
  } catch (error) {
    message.textContent = error.message;
  }
}

// A checkbox per tag, labelled with its title, in the add and the edit form.
async function loadTags() {
  const { tags } = await api("/api/tags");
  for (const fieldset of document.querySelectorAll(".tag-choices")) fillTagChoices(fieldset, tags);
}

function fillTagChoices(fieldset, tags) {
  for (const title of tags) {
    const label = element("label", undefined, "check");
    const box = document.createElement("input");
    box.type = "checkbox";
    box.name = "tag";
    box.value = title;
    label.append(box, document.createTextNode(` ${title}`));
    fieldset.append(label);
  }
}

function wholeNumber(text) {
  return /^\s*-?\d+\s*$/.test(text) ? Number(text) : text;
}

async function addReading(event) {
  event.preventDefault();
  const form = event.target;
  const message = document.getElementById("add-message");
  say(message, "");
  const reading = {
    systolic: wholeNumber(form.systolic.value),
    diastolic: wholeNumber(form.diastolic.value),
    pulse: wholeNumber(form.pulse.value),
    at: form.at.value.replace("T", " "),
    note: form.note.value,
    tags: checkedTags(form),
    force: form.force.checked,
  };
  try {
    const answer = await api("/api/readings", { method: "POST", body: JSON.stringify(reading) });
    form.reset();
    form.at.value = localDateTime(new Date());
    await refresh();
    sayDone(message, "Added.", answer.advice);
  } catch (error) {
    message.textContent = error.message;
  }
}

// Import: the file is sent first for a dry run, whose account and lists show before anything changes; the
// Import button then sends the same file again for the import itself, one change that Undo takes back.
function importQuery(form, dryRun) {
  const parts = [`name=${encodeURIComponent(form.file.files[0].name)}`, `dryRun=${dryRun}`];
  for (const name of ["skipInvalid", "createTags", "force"]) if (form[name].checked) parts.push(`${name}=true`);
  for (const name of ["format", "columns", "dateFormat"]) {
    const value = form[name].value.trim();
    if (value) parts.push(`${name}=${encodeURIComponent(value)}`);
  }
  return parts.join("&");
}

async function upload(form, dryRun) {
  const file = form.file.files[0];
  const response = await fetch(`/api/import?${importQuery(form, dryRun)}`, {
    method: "POST",
    headers: { "X-Cardiolith-Token": token, "Content-Type": "application/octet-stream" },
    body: file,
    cache: "no-store",
  });
  const body = await response.json().catch(() => ({ error: "the server's answer could not be read" }));
  if (!response.ok) throw new Error(body.error || `the server answered ${response.status}`);
  return body;
}

function detailItem(text) {
  return element("li", text);
}

function renderPreview(plan) {
  document.getElementById("import-account").textContent = plan.account;
  const details = document.getElementById("import-details");
  details.replaceChildren();
  for (const reading of plan.added) {
    details.append(detailItem(`Would add ${shownDate(reading.date)}  ${reading.systolic}/${reading.diastolic} mmHg, pulse ${reading.pulse}`));
  }
  for (const [reason, count] of Object.entries(plan.skipped)) details.append(detailItem(`Would skip ${count}: ${reason}`));
  for (const row of plan.refused) details.append(detailItem(`Refused ${row.position}: ${row.reason}`));
  for (const title of plan.newTags) details.append(detailItem(`Would create the tag "${title}"`));
  const confirm = document.getElementById("import-confirm");
  confirm.hidden = plan.refusal !== null || plan.added.length + plan.newTags.length === 0;
  if (plan.refusal) details.append(element("li", plan.refusal, "message"));
  const preview = document.getElementById("import-preview");
  preview.hidden = false;
  (confirm.hidden ? document.getElementById("import-preview-heading") : confirm).focus();
}

function closePreview() {
  document.getElementById("import-preview").hidden = true;
}

async function previewImport(event) {
  event.preventDefault();
  const form = event.target;
  const message = document.getElementById("import-message");
  say(message, "");
  closePreview();
  if (form.file.files.length === 0) {
    message.textContent = "Choose a file to import first.";
    form.file.focus();
    return;
  }
  try {
    renderPreview(await upload(form, true));
  } catch (error) {
    message.textContent = error.message;
  }
}

async function confirmImport() {
  const form = document.getElementById("import-form");
  const message = document.getElementById("import-message");
  try {
    const result = await upload(form, false);
    closePreview();
    form.reset();
    await refresh();
    say(message, result.account, true);
    form.file.focus();
  } catch (error) {
    closePreview();
    message.textContent = error.message;
  }
}

function updateExportLinks() {
  const query = periodQuery();
  for (const format of ["csv", "json", "fhir"]) {
    document.getElementById(`export-${format}`).href = `/api/export?format=${format}${query ? `&${query}` : ""}`;
  }
}

document.addEventListener("DOMContentLoaded", () => {
  const fields = document.getElementById("reading-fields");
  for (const holder of document.querySelectorAll(".reading-fields")) {
    holder.replaceWith(fields.content.cloneNode(true));
  }
  const form = document.getElementById("add-form");
  form.at.value = localDateTime(new Date());
  form.addEventListener("submit", addReading);
  document.getElementById("edit-form").addEventListener("submit", saveEdit);
  document.getElementById("edit-cancel").addEventListener("click", cancelEdit);
  document.getElementById("edit-form").addEventListener("keydown", (event) => {
    if (event.key === "Escape") cancelEdit();
  });
  document.getElementById("undo-button").addEventListener("click", undoLastChange);
  document.getElementById("import-form").addEventListener("submit", previewImport);
  // The Import button sends the choices as they are then: a preview made with others would mislead.
  for (const name of ["file", "format", "columns", "dateFormat"]) {
    document.getElementById("import-form")[name].addEventListener("change", closePreview);
  }
  document.getElementById("import-confirm").addEventListener("click", confirmImport);
  document.getElementById("import-cancel").addEventListener("click", () => {
    closePreview();
    document.getElementById("import-form").file.focus();
  });
  document.getElementById("period-form").addEventListener("submit", (event) => {
    event.preventDefault();
    refresh();
  });
  const period = document.getElementById("period-form").period;
  period.addEventListener("change", () => {
    // From and To only mean something for a range; a range waits for its days and "Show".
    const isRange = period.value === "range";
    for (const label of document.querySelectorAll("#period-form .range")) label.hidden = !isRange;
    if (!isRange) refresh();
  });
  loadTags().catch((error) => {
    document.getElementById("add-message").textContent = error.message;
  });
  refresh();
});
