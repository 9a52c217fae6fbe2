//! Says where the import library of driverinventory.dll is: the folder `lib` of the package, or `DRIVERINVENTORY_LIB`.
use std::env;
use std::path::PathBuf;

fn main() {
    let package = PathBuf::from(env::var_os("CARGO_MANIFEST_DIR").expect("cargo sets it"));
    let folder = env::var_os("DRIVERINVENTORY_LIB").map_or_else(|| package.join("../../lib"), PathBuf::from);
    println!("cargo:rustc-link-search=native={}", folder.display());
    println!("cargo:rerun-if-env-changed=DRIVERINVENTORY_LIB");
}
