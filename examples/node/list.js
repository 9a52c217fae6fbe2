// Lists the drivers of this machine: a line for each, or with "json" the whole inventory as one JSON document.
'use strict';

const fs = require('fs');

const { Documents, load } = require('./driverinventory.js');

// By its number: Node's own stream of it is still being written when a program ends.
const StandardOutput = 1;

const Inventory = load(process.env.DRIVERINVENTORY_DLL);
try {
  const inventory = Inventory.collect();
  if (process.argv[2] === 'json') {
    fs.writeFileSync(StandardOutput, inventory.document(Documents.json));
  } else {
    for (let record = 0; record < inventory.length; ++record) {
      const texts = ['kind', 'name', 'version'].map((member) => inventory.text(record, member) ?? '');
      fs.writeFileSync(StandardOutput, texts.join('\t') + '\n');
    }
  }
  inventory.release();
} catch (error) {
  process.stderr.write(`list: ${error.message}\n`);
  process.exitCode = 1;
}
