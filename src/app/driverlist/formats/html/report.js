"use strict";
// Search and sorting. Without it the page shows everything, in the order of the listing.
(() => {
  const table = document.getElementById("drivers");
  const body = table.tBodies[0];
  const headers = Array.from(table.tHead.rows[0].cells);
  const input = document.getElementById("search");
  const shown = document.getElementById("shown");
  const none = document.getElementById("none");

  // What rows hold does not change: it is read once.
  const rows = Array.from(body.rows, (element, position) => {
    const texts = Array.from(element.cells, (cell) => cell.textContent);
    return { element, position, searched: texts.join("\n").toLowerCase() };
  });

  const search = () => {
    const words = input.value.toLowerCase().split(/\s+/).filter((word) => word !== "");
    let count = 0;
    for (const row of rows) {
      const found = words.every((word) => row.searched.includes(word));
      row.element.hidden = !found;
      if (found) count += 1;
    }
    const all = rows.length === 1 ? "1 record" : `${rows.length} records`;
    shown.value = words.length === 0 ? all : `${count} of ${all}`;
    none.hidden = count > 0 || rows.length === 0;
  };

  // For each kind of column: what a cell's key or text says, null when it says nothing; and the order of two that say something.
  // Times and the keys of versions have the order of their characters.
  const collator = new Intl.Collator("en", { numeric: true, sensitivity: "base" });
  const compareCharacters = (a, b) => (a < b ? -1 : a > b ? 1 : 0);
  const text = (cell) => cell.textContent || null;
  const kinds = {
    text: { key: text, compare: collator.compare },
    number: { key: (cell) => (/^\d+$/.test(cell.textContent) ? Number(cell.textContent) : null), compare: (a, b) => a - b },
    time: { key: text, compare: compareCharacters },
    version: { key: (cell) => cell.dataset.key || null, compare: compareCharacters },
  };

  // Cells that say nothing stay at the end, whatever the direction.
  const sorted = (column, direction) => {
    const { key, compare } = kinds[headers[column].dataset.kind];
    const keyed = rows.map((row) => ({ row, key: key(row.element.cells[column]) }));
    keyed.sort((a, b) => {
      if (a.key === null || b.key === null) return (a.key === null) - (b.key === null) || a.row.position - b.row.position;
      return direction * compare(a.key, b.key) || a.row.position - b.row.position;
    });
    return keyed.map(({ row }) => row.element);
  };

  const sort = (column) => {
    const descending = headers[column].getAttribute("aria-sort") === "ascending";
    const fragment = document.createDocumentFragment();
    for (const element of sorted(column, descending ? -1 : 1)) fragment.append(element);
    body.append(fragment);
    for (const header of headers) header.setAttribute("aria-sort", "none");
    headers[column].setAttribute("aria-sort", descending ? "descending" : "ascending");
  };

  headers.forEach((header, column) => {
    const button = document.createElement("button");
    button.type = "button";
    button.textContent = header.textContent;
    button.addEventListener("click", () => sort(column));
    header.replaceChildren(button);
    header.setAttribute("aria-sort", "none");
  });
  // A browser lays out all rows of a table anew when one changes. When each is a grid, with columns as wide as the others',
  // it can leave out those that are out of sight.
  const shares = Array.from(table.getElementsByTagName("col"), (column) => `minmax(0, ${parseFloat(column.width)}fr)`);
  table.style.setProperty("--columns", shares.join(" "));
  input.addEventListener("input", search);
  search();
  document.getElementById("tools").hidden = false;
  document.documentElement.classList.add("live");
})();
