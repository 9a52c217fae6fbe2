//! Lists the drivers of this machine: a line for each, or with "json" the whole inventory as one JSON document.
use driverinventory::{Document, Inventory, Member};
use std::io::{self, Write};

fn run() -> Result<(), Box<dyn std::error::Error>> {
    let inventory = Inventory::collect()?;
    let mut output = io::BufWriter::new(io::stdout().lock());
    if std::env::args().nth(1).as_deref() == Some("json") {
        output.write_all(inventory.document(Document::Json)?.as_bytes())?;
    } else {
        let (kind, name, version) = (Member::named("kind")?, Member::named("name")?, Member::named("version")?);
        for record in inventory.records() {
            let text = |member| record.text(member).map(Option::unwrap_or_default);
            writeln!(output, "{}\t{}\t{}", text(kind)?, text(name)?, text(version)?)?;
        }
    }
    Ok(output.flush()?)
}

fn main() {
    if let Err(error) = run() {
        eprintln!("list: {}", error);
        std::process::exit(1);
    }
}
