# Runs the hosts of driverinventory.dll that have no run-time under Wine, and compares their documents with driverlist's:
#   hosts-on-windows.ps1 BIN
param([Parameter(Mandatory)] [string] $Bin)

$ErrorActionPreference = 'Stop'
$bin = (Resolve-Path $Bin).Path
$examples = (Resolve-Path (Join-Path $PSScriptRoot '..\..\examples')).Path
$env:DRIVERINVENTORY_DLL = Join-Path $bin 'driverinventory.dll'
$env:PATH = "$bin;$env:PATH"
$folder = New-Item -ItemType Directory -Force (Join-Path ([IO.Path]::GetTempPath()) 'driverinventory-hosts')

# A document as bytes, without what may change from one run to the next.
function Read-Document([string] $File) {
    $text = [IO.File]::ReadAllText($File, (New-Object Text.UTF8Encoding $false)).Replace("`r`n", "`n")
    $text -replace '("(time|state)": ")[^"]*', '$1'
}

function Compare-Host([string] $Name, [string] $Command) {
    $file = Join-Path $folder "$Name.json"
    cmd /c "$Command > `"$file`""
    if ($LASTEXITCODE -ne 0) { throw "$Name failed with $LASTEXITCODE." }
    if ((Read-Document $file) -cne $expected) { throw "$Name gives something else than driverlist." }
    Write-Output "$Name gives the document of driverlist."
}

$file = Join-Path $folder 'expected.json'
cmd /c "`"$bin\driverlist.exe`" list --format json > `"$file`""
$expected = Read-Document $file
Compare-Host 'Python' "python -B `"$examples\python\list.py`" json"
Compare-Host 'CSharp' "dotnet run --project `"$examples\csharp\list.csproj`" -- json"
Compare-Host 'WindowsPowerShell' "powershell -NoProfile -ExecutionPolicy Bypass -File `"$examples\powershell\list.ps1`" json `"$env:DRIVERINVENTORY_DLL`""
Compare-Host 'PowerShell' "pwsh -NoProfile -File `"$examples\powershell\list.ps1`" json `"$env:DRIVERINVENTORY_DLL`""
