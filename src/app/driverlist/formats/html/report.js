"use strict";
// Search, filters, sorting, columns, rows that open, and the file of the rows shown. Without it the page shows everything,
// in the order of the listing.
(() => {
  const byId = (id) => document.getElementById(id);
  const data = JSON.parse(byId("data").textContent);
  const table = byId("rows");
  const body = table.tBodies[0];
  const headRow = table.tHead.rows[0];
  const widths = table.querySelector("colgroup");
  const input = byId("search");

  const make = (name, properties, ...children) => {
    const element = Object.assign(document.createElement(name), properties);
    element.append(...children);
    return element;
  };

  // What is known of a row does not change. A time is kept as files have it, and shown as people read it.
  const isoTime = /^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ$/;
  const textOf = (value) => {
    if (value === true) return "yes";
    if (Array.isArray(value)) return value.join("\n");
    return isoTime.test(value) ? `${value.slice(0, 10)} ${value.slice(11, 19)}` : String(value);
  };
  const rows = data.rows.map((values, position) => ({ values, position, element: body.rows[position], opened: null }));
  const titleColumn = data.columns.findIndex((column) => column.title);
  const kindColumn = data.columns.findIndex((column) => column.name === "kind");
  /** The column at which a row opens. */
  const firstColumn = data.shown.includes(titleColumn) ? titleColumn : data.shown[0];
  const titleOf = (row) => textOf(row.values[titleColumn]);

  // --- Columns: those of the table in their order, and behind them those that were added.

  const columns = data.shown.map((index, place) => ({ index, head: headRow.cells[place], width: widths.children[place], hidden: false }));
  const shownColumns = () => columns.filter((column) => !column.hidden);

  // As the program breaks texts: see linebreaks.h.
  const breakPlaces = /(?<=[\\/_\-&;,])|(?<=(?:^|[^a-z])(?:[a-z]{16})+)(?=[a-z])/gi;
  const breakable = (text) => text.split(breakPlaces).flatMap((part, i) => (i === 0 ? [part] : [document.createElement("wbr"), part]));
  const isNumeric = (column) => data.columns[column.index].kind !== "text";
  const toneOf = (column, row) => ["", "good", "doubtful", "bad"][Number((data.tones[column.index] || "")[row.position] || 0)];

  const cellOf = (column, row) => {
    const { label, style, kind } = data.columns[column.index];
    const text = textOf(row.values[column.index]);
    const cell = document.createElement("td");
    if (text === "") return cell;
    cell.dataset.label = label;
    cell.className = `${style} ${toneOf(column, row)}`.trim();
    if (kind === "time" && text.length > 10) {
      cell.append(text.slice(0, 10), make("span", { className: "clock" }, text.slice(10)));
    } else {
      cell.append(...(kind === "text" ? breakable(text) : [text]));
    }
    return cell;
  };

  const addColumn = (index) => {
    const { label, style } = data.columns[index];
    const head = make("th", { scope: "col", className: style }, label);
    const column = { index, head, width: document.createElement("col"), hidden: false };
    headRow.append(column.head);
    widths.append(column.width);
    for (const row of rows) row.element.append(cellOf(column, row));
    columns.push(column);
    prepareHead(column);
    return column;
  };

  // How wide a column is: as its longest texts need, short ones in any case, the others with what is left.
  const canvas = document.createElement("canvas").getContext("2d");
  const measured = (text) => canvas.measureText(text).width;
  const needOf = (column) => {
    if (column.need) return column.need;
    const { label } = data.columns[column.index];
    const texts = new Set(rows.map((row) => textOf(row.values[column.index]).replaceAll("\n", " ")));
    const longest = [...texts].sort((a, b) => b.length - a.length).slice(0, 12);
    const mark = column.index === firstColumn ? 30 : column.index in data.tones ? 14 : 0;
    column.need = Math.ceil(Math.max(measured(label) * 1.1 + 12, ...longest.map(measured)) + mark) + 14;
    return column.need;
  };
  const isTight = (column) => {
    const need = needOf(column);
    return column.index !== firstColumn && need <= (isNumeric(column) || column.index in data.tones ? 240 : 130);
  };
  // Where the screen has no room for the time of day, the style leaves it out.
  const wideScreen = matchMedia("(min-width: 110.01rem)");
  /** The least of a column in pixels, and its part of what is left: a higher `squeeze` is for less room. */
  const limitsOf = (column, squeeze) => {
    const { kind, label } = data.columns[column.index];
    const need = needOf(column);
    if (column.index === firstColumn) return [Math.min(need, 150), Math.min(need, 360) * 1.2];
    if (kind === "time" && !wideScreen.matches) {
      const day = Math.ceil(Math.max(measured("0000-00-00"), squeeze === 0 ? measured(label) * 1.1 + 2 : 0)) + 14;
      return [Math.min(need, day), 0];
    }
    if (!isTight(column)) return [Math.min(need, [80, 56, 36, 36][squeeze]), Math.min(need, 240)];
    return squeeze < 3 || isNumeric(column) || column.index in data.tones ? [need, 0] : [Math.min(need, 56), need * 3];
  };
  const trackOf = ([least, part]) => (part === 0 ? `${least}px` : `minmax(${least}px, ${Math.round(part)}fr)`);
  const tracks = (shown) => {
    const margins = 40;
    const limits = (squeeze) => shown.map((column) => limitsOf(column, squeeze));
    const fits = (of) => of.reduce((sum, [least]) => sum + least, margins) <= document.documentElement.clientWidth;
    const fitting = [0, 1, 2].map(limits).find(fits) || limits(3);
    return fitting.map(trackOf).join(" ");
  };

  // Whether a line of paper holds a row without dividing a number, as the program decides it: see htmltable.cpp.
  const lettersOfPaper = 166;
  const widestPart = (column) => {
    const { label, kind } = data.columns[column.index];
    // Lines may also end at blanks, and in front of wide characters.
    const words = (text) => text.split(breakPlaces).flatMap((part) => part.split(/\s|(?=[\u2e80-\uffdc])/));
    const parts = { text: words, time: (text) => text.split(" ") }[kind] || ((text) => [text]);
    if (column.widest === undefined) {
      const texts = new Set(rows.map((row) => textOf(row.values[column.index])));
      column.widest = Math.max(...parts(label).map((part) => part.length));
      for (const text of texts) for (const part of parts(text)) column.widest = Math.max(column.widest, part.length);
    }
    return column.widest;
  };
  const fitsPaper = (shown) => shown.reduce((sum, column) => sum + widestPart(column) + 1.5, 0) <= lettersOfPaper;

  // A browser lays out all rows of a table anew when one changes. When each is a grid, with columns as wide as the others',
  // it can leave out those that are out of sight.
  const arrange = () => {
    const shown = shownColumns();
    const { fontSize, fontFamily } = getComputedStyle(body);
    canvas.font = `${fontSize} ${fontFamily}`;
    table.style.setProperty("--columns", tracks(shown));
    const whole = shown.reduce((sum, column) => sum + data.columns[column.index].width + 2, 0);
    for (const column of shown) {
      const share = ((data.columns[column.index].width + 2) * 100) / whole;
      column.width.setAttribute("width", `${share.toFixed(1)}%`);
    }
    table.classList.toggle("paragraphs", !fitsPaper(shown));
    for (const row of rows) if (row.opened) row.opened.cells[0].colSpan = shown.length;
  };

  const setHidden = (column, hidden) => {
    column.hidden = hidden;
    const place = columns.indexOf(column);
    for (const element of [column.head, column.width, ...rows.map((row) => row.element.cells[place])]) element.hidden = hidden;
  };
  const showColumn = (index, isShown) => {
    const column = columns.find((candidate) => candidate.index === index);
    if (column) setHidden(column, !isShown);
    else if (isShown) addColumn(index);
    arrange();
  };

  const menu = byId("columns");
  const offerColumns = () => {
    const choices = menu.querySelector("fieldset");
    data.columns.forEach((column, index) => {
      const box = make("input", { type: "checkbox", checked: data.shown.includes(index), disabled: index === firstColumn });
      box.addEventListener("change", () => showColumn(index, box.checked));
      choices.append(make("label", {}, box, column.label));
    });
    menu.addEventListener("keydown", (event) => {
      if (event.key !== "Escape" || !menu.open) return;
      menu.open = false;
      menu.querySelector("summary").focus();
    });
    document.addEventListener("click", (event) => {
      if (!menu.contains(event.target)) menu.open = false;
    });
  };

  // --- Search and filters: a row is shown that has all words and is in a chosen group of every list that has one.

  const facets = new Map(Object.entries(data.facets).map(([name, groups]) => [name, groups.map((group) => new Set(group))]));
  /** By list: its chosen groups, each with the button that chooses it. */
  const chosen = new Map([...facets.keys()].map((name) => [name, new Map()]));
  const wordsOf = (row) => {
    row.words ??= row.values.map(textOf).join("\n").toLowerCase();
    return row.words;
  };
  const isInChosenGroups = (row) =>
    [...chosen].every(([name, groups]) => {
      const isIn = (group) => facets.get(name)[group].has(row.position);
      return groups.size === 0 || [...groups.keys()].some(isIn);
    });

  const countText = (count, isSelected) => {
    const all = `${rows.length} ${data.thing}${rows.length === 1 ? "" : "s"}`;
    return isSelected ? `${count} of ${all}` : all;
  };
  const apply = () => {
    const words = input.value.toLowerCase().split(/\s+/).filter((word) => word !== "");
    const isFiltered = [...chosen.values()].some((groups) => groups.size > 0);
    let count = 0;
    for (const row of rows) {
      row.shown = (!isFiltered || isInChosenGroups(row)) && words.every((word) => wordsOf(row).includes(word));
      row.element.hidden = !row.shown;
      if (row.opened) row.opened.hidden = !row.shown;
      if (row.shown) count += 1;
    }
    const text = countText(count, isFiltered || words.length > 0);
    if (byId("shown").value !== text) byId("shown").value = text;
    byId("none").hidden = count > 0 || rows.length === 0;
  };

  const choose = (name, group, button, isChosen) => {
    if (isChosen) chosen.get(name).set(group, button);
    else chosen.get(name).delete(group);
    button.setAttribute("aria-pressed", String(isChosen));
    showChosen();
    apply();
  };
  const clear = () => {
    for (const [name, groups] of chosen) for (const [group, button] of [...groups]) choose(name, group, button, false);
  };
  const showChosen = () => {
    const list = byId("chosen");
    list.replaceChildren();
    const add = (text, label, remove) => {
      const button = make("button", { type: "button", title: label }, text);
      button.setAttribute("aria-label", label);
      // The button goes: the next one, or the search, takes its place.
      button.addEventListener("click", () => {
        remove();
        (list.querySelector("button") || input).focus();
      });
      list.append(make("li", {}, button));
    };
    for (const [name, groups] of chosen) {
      for (const [group, button] of groups) {
        const text = `${name}: ${button.dataset.label}`;
        add(text, `Remove the filter ${text}`, () => choose(name, group, button, false));
      }
    }
    if (list.children.length > 1) {
      add("Clear all", "Clear all filters", clear);
      list.lastChild.className = "clear";
    }
  };

  const addFilter = (name, group, button, label) => {
    button.type = "button";
    button.dataset.label = label;
    button.setAttribute("aria-pressed", "false");
    button.addEventListener("click", () => choose(name, group, button, button.getAttribute("aria-pressed") !== "true"));
  };
  const prepareBars = (list) => {
    Array.from(list.children, (item, group) => {
      const label = item.querySelector(".label");
      const button = make("button", { title: label.textContent });
      label.replaceWith(button);
      button.append(label);
      addFilter(list.dataset.facet, group, button, label.textContent);
      // Nothing to choose.
      button.disabled = facets.get(list.dataset.facet)[group].size === 0;
    });
  };
  const prepareFindings = (list) => {
    Array.from(list.children, (item, group) => {
      const rowsFound = facets.get(list.dataset.facet)[group].size;
      if (rowsFound === 0) return;
      const button = make("button", {}, `Show only ${rowsFound === 1 ? "this row" : `these ${rowsFound} rows`}`);
      item.querySelector("details").append(button);
      addFilter(list.dataset.facet, group, button, item.querySelector(".label").textContent);
    });
  };

  // --- Sorting. Cells that say nothing stay at the end, whatever the direction.

  const collator = new Intl.Collator("en", { numeric: true, sensitivity: "base" });
  const compareCharacters = (a, b) => (a < b ? -1 : a > b ? 1 : 0);
  const compareNumbers = (a, b) => a - b;
  const text = (value) => textOf(value) || null;
  const orders = {
    text: { compare: collator.compare, key: (row, index) => text(row.values[index]) },
    number: { compare: compareNumbers, key: (row, index) => (typeof row.values[index] === "number" ? row.values[index] : null) },
    time: { compare: compareCharacters, key: (row, index) => text(row.values[index]) },
    version: { compare: compareNumbers, key: (row, index) => data.ranks[index][row.position] || null },
  };
  const sort = (column) => {
    const descending = column.head.getAttribute("aria-sort") === "ascending";
    const { key, compare } = orders[data.columns[column.index].kind];
    const keyed = rows.map((row) => ({ row, key: key(row, column.index) }));
    keyed.sort((a, b) => {
      if (a.key === null || b.key === null) return (a.key === null) - (b.key === null) || a.row.position - b.row.position;
      return (descending ? -1 : 1) * compare(a.key, b.key) || a.row.position - b.row.position;
    });
    // Emptied at once: some browsers need milliseconds for every single row that moves.
    body.replaceChildren();
    const fragment = document.createDocumentFragment();
    for (const { row } of keyed) fragment.append(...[row.element, row.opened].filter(Boolean));
    body.append(fragment);
    for (const other of columns) other.head.setAttribute("aria-sort", "none");
    column.head.setAttribute("aria-sort", descending ? "descending" : "ascending");
  };
  // The label stays text beside the button: a browser prints no button in the head that it repeats on every page.
  const prepareHead = (column) => {
    const button = make("button", { type: "button" });
    button.setAttribute("aria-label", `Sort by ${data.columns[column.index].label}`);
    button.addEventListener("click", () => sort(column));
    column.head.append(button);
    column.head.setAttribute("aria-sort", "none");
  };

  // --- Rows open to all that is known, and to the rows that they have to do with.

  const line = (label, ...values) => make("div", {}, make("dt", {}, label), ...values.map((value) => make("dd", {}, ...breakable(value))));
  const membersOf = (row) =>
    data.columns.map(({ label }, index) => [label, textOf(row.values[index])]).filter(([, value]) => value !== "");
  const knownOf = (row) => {
    if (data.openingOfRow.length === 0) {
      return make("dl", { className: "members" }, ...membersOf(row).map(([label, value]) => line(label, value)));
    }
    const lines = data.openings[data.openingOfRow[row.position]];
    // A record that came or went has one side only.
    const hasBoth = lines.some(([, before]) => before !== "") && lines.some(([, , after]) => after !== "");
    const list = lines.map(([label, before, after]) => {
      if (before === after || !hasBoth) return line(label, textOf(after || before));
      const element = line(label, textOf(before || "\u2013"), textOf(after || "\u2013"));
      element.className = "changed";
      return element;
    });
    return make("dl", { className: "members" }, ...list);
  };
  const headings = { service: "Services", device: "Devices", package: "Packages", chipset: "Chipset packages" };
  const relatedOf = (row) => {
    const lists = new Map();
    for (const position of data.related[row.position] || []) {
      const other = rows[position];
      const kind = textOf(other.values[kindColumn]);
      const link = make("a", { href: `#${other.element.id}` }, titleOf(other) || "(empty)");
      const details = data.columns.findIndex((column) => column.name === "description");
      const description = textOf(other.values[details]);
      lists.set(kind, [...(lists.get(kind) || []), make("li", {}, link, description === "" ? "" : ` ${description}`)]);
    }
    const shown = [...lists].flatMap(([kind, items]) => [make("h3", {}, headings[kind] || kind), make("ul", {}, ...items)]);
    return make("div", { className: "related", hidden: lists.size === 0 }, ...shown);
  };

  const buttonOf = (row) => row.element.querySelector(".title button");
  const setOpen = (row, isOpen) => {
    if (Boolean(row.opened) === isOpen) return;
    buttonOf(row).setAttribute("aria-expanded", String(isOpen));
    if (isOpen) {
      const cell = make("td", { colSpan: shownColumns().length }, make("div", { className: "opened" }, knownOf(row), relatedOf(row)));
      row.opened = make("tr", { className: "opening" }, cell);
      row.element.after(row.opened);
    } else {
      row.opened.remove();
      row.opened = null;
    }
    row.element.classList.toggle("open", isOpen);
  };
  const prepareRow = (row) => {
    // A reader who chose columns without names opens a row at its beginning.
    const title = row.element.querySelector("th") || row.element.cells[0];
    title.classList.add("title");
    const button = make("button", { type: "button" });
    button.append(...title.childNodes);
    if (button.textContent === "") button.append("(empty)");
    button.setAttribute("aria-expanded", "false");
    title.append(button);
  };
  body.addEventListener("click", (event) => {
    const button = event.target.closest(".title button");
    const row = button && rows.find((candidate) => candidate.element === button.closest("tr"));
    if (row) setOpen(row, !row.opened);
  });

  /** Opens the row that an address means, whatever was searched and filtered. */
  const reveal = (address) => {
    const row = rows.find((candidate) => `#${candidate.element.id}` === address);
    if (!row || titleColumn < 0) return false;
    if (!row.shown) {
      input.value = "";
      clear();
      apply();
    }
    setOpen(row, true);
    row.element.scrollIntoView({ block: "center" });
    buttonOf(row).focus({ preventScroll: true });
    return true;
  };
  document.addEventListener("click", (event) => {
    const link = event.target.closest("a[href^='#r']");
    if (!link || !reveal(link.hash)) return;
    event.preventDefault();
    history.pushState(null, "", link.hash);
  });
  window.addEventListener("popstate", () => reveal(location.hash));

  // --- The file of the rows and columns shown: the same that the program would write of them.

  const fieldOf = (row, index) => {
    const value = row.values[index];
    const known = (data.texts[row.position] || {})[index];
    const written = known ?? (Array.isArray(value) ? value.join(";") : String(value));
    // A spreadsheet evaluates a text that begins so; see csvformat.cpp.
    const isFormula = typeof value !== "number" && value !== true && /^[=+\-@\t\r]/.test(written);
    return isFormula ? `'${written}` : written;
  };
  const quoted = (field) => (/[",\r\n]/.test(field) ? `"${field.replaceAll('"', '""')}"` : field);
  const recordOf = (fields) => `${fields.map(quoted).join(",") || '""'}\r\n`;
  const csvText = () => {
    const indexes = shownColumns().map((column) => column.index);
    const positions = new Map(Array.from(body.rows, (element, place) => [element, place]));
    const inOrder = rows.filter((row) => row.shown).sort((a, b) => positions.get(a.element) - positions.get(b.element));
    const head = recordOf(indexes.map((index) => data.columns[index].name));
    return head + inOrder.map((row) => recordOf(indexes.map((index) => fieldOf(row, index)))).join("");
  };
  const csv = byId("csv");
  csv.href = "#";
  csv.download = data.file;
  csv.addEventListener("click", () => {
    const address = URL.createObjectURL(new Blob([csvText()], { type: "text/csv" }));
    csv.href = address;
    // Once the browser has taken it.
    setTimeout(() => {
      URL.revokeObjectURL(address);
      csv.href = "#";
    }, 1000);
  });

  // ---

  columns.forEach(prepareHead);
  if (titleColumn >= 0) rows.forEach(prepareRow);
  for (const list of document.querySelectorAll(".bars")) prepareBars(list);
  for (const list of document.querySelectorAll(".rules")) prepareFindings(list);
  offerColumns();
  document.documentElement.classList.add("live");
  arrange();
  input.addEventListener("input", apply);
  window.addEventListener("resize", arrange);
  apply();
  const tools = byId("tools");
  tools.hidden = false;
  new ResizeObserver(() => document.documentElement.style.setProperty("--tools", `${tools.offsetHeight}px`)).observe(tools);
  reveal(location.hash);
})();
